// SPDX-License-Identifier: MIT
#include "tests/support/files.h"
#include "tests/support/process.h"
#include "tests/support/window_fixture.h"

#include "crash/crash_handler.h"

#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QProcess>
#include <QUrl>

/// The real program crashes; the next start tells of it, the one after that does not.
class tst_CrashNotice : public QObject, WindowFixture
{
    Q_OBJECT

public slots:
    void noteUrl(const QUrl& url) { m_opened = url; }

private slots:
    void initTestCase()
    {
        m_folder = dataFolder() + "Dump/";
        QVERIFY(QDir().mkpath(m_folder));
        CrashHandler::instance().setDumpFolder(m_folder);
        QDesktopServices::setUrlHandler("file", this, "noteUrl");
    }
    void cleanup() { close(); }

    void programLeavesADump()
    {
#ifdef Q_OS_WIN
        QSKIP("the dump writer of Wine takes longer than any crash may");
#endif
        const auto* box = addBox(5);
        QProcess program;
        program.start(TARN_HUB_PROGRAM, {"--subnet", ip(0) + "/24", "--fping", LAN_FPING,
                                         "--update-server", "http://" + ip(250) + ":9"});
        QVERIFY(program.waitForStarted());
        // Its window is up: a sanitizer would hang while libraries are still being loaded.
        QTRY_VERIFY_WITH_TIMEOUT(!box->requests().isEmpty(), 20000);
        QVERIFY(dumps().isEmpty());
        crash(program.processId());
        QVERIFY(program.waitForFinished(10000));
#ifdef __SANITIZE_ADDRESS__
        // So built, the program leaves crashes to the sanitizer.
        QVERIFY(program.readAllStandardError().contains("AddressSanitizer"));
        QVERIFY(dumps().isEmpty());
#else
        QCOMPARE(program.exitStatus(), QProcess::CrashExit);
        QCOMPARE(dumps().size(), 1);
#endif
    }

    void nextStartTellsOnce()
    {
        addDump("TarnHub-1.0.0.10-20260101-000000.dmp");
        open();
        QTRY_VERIFY(isNoticeShown());
        click("crash_open");
        QCOMPARE(m_opened, QUrl::fromLocalFile(m_folder));
        QVERIFY(isNoticeShown());
        click("crash_close");
        QVERIFY(!isNoticeShown());

        close();
        open();
        // As long as the first time and more: the folder has certainly been looked through.
        QTest::qWait(1500);
        QVERIFY(!isNoticeShown());
    }

    void noticeDisturbsNobody()
    {
        addBox(7);
        for (int n = 0; n < 12; ++n)
            addDump(QString("TarnHub-1.0.0.10-20260102-0000%1.dmp").arg(n, 2, 10, QChar('0')));
        open();
        QTRY_VERIFY(isNoticeShown());
        QCOMPARE(dumps().size(), 10);
        QVERIFY(!QApplication::activeModalWidget());
        QVERIFY(!notice()->isAncestorOf(QApplication::focusWidget()));
        // Every word has its room beside the buttons.
        auto* text = child<QLabel>("crash_text");
        QVERIFY(text->height() >= text->heightForWidth(text->width()));
        // The list goes on beside it.
        QTRY_VERIFY_WITH_TIMEOUT(item(7), 10000);
        clickRow(7);
        QTRY_VERIFY(child<QWidget>("right_widget")->isVisible());
        QVERIFY(isNoticeShown());
    }

private:
    QStringList dumps() const
    {
        return QDir(m_folder).entryList({"*.dmp"}, QDir::Files);
    }
    bool isNoticeShown() const
    {
        return notice()->isVisible();
    }
    QWidget* notice() const
    {
        return child<QWidget>("crash_notice");
    }
    void addDump(const QString& name)
    {
        writeFile(m_folder + name, {});
    }

    QString m_folder;
    QUrl m_opened;
};

QTEST_MAIN(tst_CrashNotice)
#include "tst_crash_notice.moc"
