// SPDX-License-Identifier: MIT
#include "tests/ui/window/window_fixture.h"

#include "crash/crash_handler.h"

#include <QAbstractButton>
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QProcess>
#include <QUrl>

#include <csignal>

/// The real program crashes; the next start tells of it, the one after that does not.
class tst_CrashNotice : public QObject
{
    Q_OBJECT

public slots:
    void noteUrl(const QUrl& url) { m_opened = url; }

private slots:
    void initTestCase();
    void cleanup();
    void programLeavesADump();
    void nextStartTellsOnce();
    void noticeDisturbsNobody();

private:
    QStringList dumps() const { return QDir(m_folder).entryList({"*.dmp"}, QDir::Files); }
    bool isNoticeShown() const { return notice()->isVisible(); }
    QWidget* notice() const { return m_fixture->child<QWidget>("crash_notice"); }
    void addDump(const QString& name);

    std::unique_ptr<WindowFixture> m_fixture;
    QString m_folder;
    QUrl m_opened;
};

namespace
{

/// The system's own word on whether a process handles this signal.
bool handles(qint64 process, int signal)
{
    QFile status(QString("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("SigCgt:"))
            return line.mid(7).trimmed().toULongLong(nullptr, 16) >> (signal - 1) & 1;
    }
    return false;
}

} // namespace

void tst_CrashNotice::initTestCase()
{
    StartUp::dress(*qApp);
    m_fixture = std::make_unique<WindowFixture>("127.77.47");
    m_folder = m_fixture->dataFolder() + "Dump/";
    QVERIFY(QDir().mkpath(m_folder));
    CrashHandler::instance().setDumpFolder(m_folder);
    QDesktopServices::setUrlHandler("file", this, "noteUrl");
}

void tst_CrashNotice::cleanup()
{
    m_fixture->close();
}

void tst_CrashNotice::addDump(const QString& name)
{
    QFile dump(m_folder + name);
    QVERIFY(dump.open(QIODevice::WriteOnly));
}

void tst_CrashNotice::programLeavesADump()
{
    QProcess program;
    program.start(TARN_HUB_PROGRAM, {"--subnet", "127.77.47.0/24", "--fping", LAN_FPING,
                                     "--update-server", "http://127.77.47.250:9"});
    QVERIFY(program.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(handles(program.processId(), SIGSEGV), 20000);
    QVERIFY(dumps().isEmpty());
    ::kill(static_cast<pid_t>(program.processId()), SIGSEGV);
    QVERIFY(program.waitForFinished(10000));
#ifdef __SANITIZE_ADDRESS__
    // So built, the program leaves crashes to the sanitizer.
    QVERIFY(program.readAllStandardError().contains("AddressSanitizer"));
    QVERIFY(dumps().isEmpty());
#else
    QCOMPARE(program.exitStatus(), QProcess::CrashExit);
    QCOMPARE(program.exitCode(), SIGSEGV);
    QCOMPARE(dumps().size(), 1);
#endif
}

void tst_CrashNotice::nextStartTellsOnce()
{
    addDump("TarnHub-1.0.0.10-20260101-000000.dmp");
    m_fixture->open();
    QTRY_VERIFY(isNoticeShown());
    QTest::mouseClick(m_fixture->child<QWidget>("crash_open"), Qt::LeftButton);
    QCOMPARE(m_opened, QUrl::fromLocalFile(m_folder));
    QVERIFY(isNoticeShown());
    QTest::mouseClick(m_fixture->child<QWidget>("crash_close"), Qt::LeftButton);
    QVERIFY(!isNoticeShown());

    m_fixture->close();
    m_fixture->open();
    // As long as the first time and more: the folder has certainly been looked through.
    QTest::qWait(1500);
    QVERIFY(!isNoticeShown());
}

void tst_CrashNotice::noticeDisturbsNobody()
{
    m_fixture->addBox(7);
    for (int n = 0; n < 12; ++n)
        addDump(QString("TarnHub-1.0.0.10-20260102-0000%1.dmp").arg(n, 2, 10, QChar('0')));
    m_fixture->open();
    QTRY_VERIFY(isNoticeShown());
    QCOMPARE(dumps().size(), 10);
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(!notice()->isAncestorOf(QApplication::focusWidget()));
    // Every word has its room beside the buttons.
    auto* text = m_fixture->child<QLabel>("crash_text");
    QVERIFY(text->height() >= text->heightForWidth(text->width()));
    // The list goes on beside it.
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7), 10000);
    m_fixture->clickRow(7);
    QTRY_VERIFY(m_fixture->child<QWidget>("right_widget")->isVisible());
    QVERIFY(isNoticeShown());
}

QTEST_MAIN(tst_CrashNotice)
#include "tst_crash_notice.moc"
