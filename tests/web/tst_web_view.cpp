// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "tests/web/web_view_fixture.h"
#include "web/download_name.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTextEdit>
#include <QWebEngineProfile>

/// Boxes with pages of their own in the real window.
class TestWebView : public WebViewFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { openWindow(); }
    void init() { m_answers = std::make_unique<DialogAnswerer>(); }
    void cleanup() { m_answers.reset(); }
    void cleanupTestCase() { m_lan.reset(); }

    void startsNoEngineBeforeItIsNeeded()
    {
        m_lan->clickRow(kora);
        QTest::qWait(200);
        QVERIFY(!view());
    }

    void showsTheDashboard()
    {
        m_lan->window().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&m_lan->window()));
        m_lan->deviceView()->setFocus();
        selectAndWait(box);
        QCOMPARE(title(), QString("Dashboard"));
        QVERIFY(evaluate("document.body.innerText").toString().contains(m_lan->ip(box)));
        QCOMPARE(requestedUrl(),
                 QString("http://%1/cgi-bin/set-dashboard.cgi").arg(m_lan->ip(box)));
        // Arrow keys go on through the list.
        QVERIFY(m_lan->deviceView()->hasFocus());
    }

    void staysInThePaneForNewWindows()
    {
        const int windows = QApplication::topLevelWidgets().size();
        click("more");
        QTRY_COMPARE_WITH_TIMEOUT(title(), QString("About this box"), loadMs);
        QCOMPARE(QApplication::topLevelWidgets().size(), windows);
        // An address that a script fills in later is found, too.
        selectAndWait(box);
        evaluate("w = window.open(); w.location = '/cgi-bin/about.cgi'; 0");
        QTRY_COMPARE_WITH_TIMEOUT(title(), QString("About this box"), loadMs);
        QTRY_COMPARE(view()->parentWidget()->findChildren<QWebEngineView*>().size(), 1);
    }

    void namesDownloads_data()
    {
        columns<QString, QString, QString>("suggested", "name", "filter");
        const QString all = "All file(*.*)";
        row("as stated", "a:b?.mp4", "ab.mp4", "mp4(*.mp4);;" + all);
        row("no suffix", "read*me", "readme", all);
        row("filter in a suffix", "a.b);;c(*", "a.b);;c(", all);
        row("nothing left", "?*/\\", "download", all);
    }
    void namesDownloads()
    {
        const auto [suggested, name, filter] = cells<QString, QString, QString>();
        QCOMPARE(offeredName(suggested), name);
        QCOMPARE(saveFilter(name), filter);
    }

    void savesADownloadUnderACleanName()
    {
        selectAndWait(box);
        QTemporaryDir folder;
        QString offered;
        QStringList filters;
        m_answers->expect<QFileDialog>([&](QFileDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QString("另存为"));
            offered = QFileInfo(dialog.selectedFiles().value(0)).fileName();
            filters = dialog.nameFilters();
            choosePath(dialog, folder.path() + "/kept.txt");
        });
        click("log");
        QTRY_VERIFY_WITH_TIMEOUT(m_answers->isDone(), loadMs);
        QVERIFY2(!offered.contains(QRegularExpression("[\\\\/:*?\"<>|]")), qPrintable(offered));
        QVERIFY2(offered.endsWith("log_.txt") || offered.endsWith("log.txt"), qPrintable(offered));
        QVERIFY(!offered.startsWith('.'));
        QCOMPARE(filters, QStringList({"txt(*.txt)", "All file(*.*)"}));
        auto* state = m_lan->child<QLabel>("downloadState");
        QTRY_COMPARE_WITH_TIMEOUT(state->text(), QString("已保存"), loadMs);
        QFile file(folder.path() + "/kept.txt");
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("2026-01-01 00:00:00 start\n").repeated(200));
        m_lan->child<QPushButton>("downloadButton")->click();
        QTRY_VERIFY(!m_lan->window().findChild<QLabel*>("downloadState"));
    }

    void cancelsADownload()
    {
        QSignalSpy requested(view()->page()->profile(), &QWebEngineProfile::downloadRequested);
        m_answers->expect<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
        click("log");
        QTRY_VERIFY_WITH_TIMEOUT(m_answers->isDone(), loadMs);
        QTRY_COMPARE(requested.size(), 1);
        QVERIFY(!m_lan->window().findChild<QLabel*>("downloadState"));
        // A page that asks again at once gets no second dialog.
        click("log");
        QTRY_COMPARE_WITH_TIMEOUT(requested.size(), 2, loadMs);
        QVERIFY(!QApplication::activeModalWidget());
        QCOMPARE(title(), QString("Dashboard"));
    }

    void saysWhoseDialogItIs()
    {
        QString asker;
        QString heading;
        QString text;
        expectPage([&](QDialog& dialog) {
            heading = dialog.windowTitle();
            asker = dialog.findChild<QLabel*>("pageDialogAsker")->text();
            text = dialog.findChild<QTextEdit*>("pageDialogText")->toPlainText();
            QCOMPARE(dialog.windowModality(), Qt::WindowModal);
            dialog.accept();
        });
        click("alert");
        QTRY_VERIFY_WITH_TIMEOUT(m_answers->isDone(), loadMs);
        QCOMPARE(asker, m_lan->ip(box) + " 的网页显示");
        QCOMPARE(heading, asker);
        QCOMPARE(text, QString("Input signal lost"));

        expectPage([](QDialog& dialog) {
            dialog.findChild<QLineEdit*>()->setText("<b>42</b>");
            dialog.accept();
        });
        QCOMPARE(evaluate("prompt('How many?', '41')").toString(), QString("<b>42</b>"));
        QVERIFY(m_answers->isDone());
        expectPage([](QDialog& dialog) { dialog.reject(); });
        QCOMPARE(evaluate("confirm('x'.repeat(100000))"), QVariant(false));
        QVERIFY(m_answers->isDone());
    }

    void silencesAPage()
    {
        selectAndWait(box);
        int shown = 0;
        const std::function<void(QDialog&)> close = [&](QDialog& dialog) {
            auto* silence = dialog.findChild<QAbstractButton*>();
            const auto buttons = dialog.findChildren<QAbstractButton*>();
            for (QAbstractButton* button : buttons)
                silence = button->isCheckable() ? button : silence;
            ++shown;
            QCOMPARE(silence->isVisible(), shown > 2);
            silence->setChecked(silence->isVisible());
            expectPage(close);
            dialog.accept();
        };
        expectPage(close);
        evaluate("for (let i = 0; i < 1000; ++i) alert(i); 0");
        QCOMPARE(shown, 3);
        // Another visit starts afresh.
        shown = 0;
        selectAndWait(box);
        evaluate("alert(1); 0");
        QCOMPARE(shown, 1);
    }

    void asksForALoginByName()
    {
        QString asker;
        expectPage([&](QDialog& dialog) {
            asker = dialog.findChild<QLabel*>("pageDialogAsker")->text();
            dialog.reject();
        });
        click("login");
        QTRY_VERIFY_WITH_TIMEOUT(m_answers->isDone(), loadMs);
        QCOMPARE(asker, m_lan->ip(box) + " 要求登录");
        QTRY_COMPARE_WITH_TIMEOUT(title(), QString("401 Unauthorized"), loadMs);
    }

    void refusesFilesAndPrograms()
    {
        selectAndWait(box);
        for (const char* target : {"file:///etc/passwd", "qrc:/qss/spark.qss", "chrome://version",
                                   "mailto:a@b.example", "view-source:http://127.0.0.1/"}) {
            evaluate(QString("location.href = '%1'; 0").arg(target));
            evaluate(QString("window.open('%1'); 0").arg(target));
            QTest::qWait(100);
            QCOMPARE(view()->page()->url().host(), m_lan->ip(box));
            QCOMPARE(evaluate("document.title").toString(), QString("Dashboard"));
        }
    }

    void saysThatABoxIsGone()
    {
        selectAndWait(otherBox);
        sim::VirtualBox* gone = m_lan->lan().find(m_lan->ip(otherBox));
        QVERIFY(gone);
        gone->unplug();
        m_lan->clickRow(otherBox);
        QTRY_COMPARE_WITH_TIMEOUT(noticeText(), QString("无法打开设备的网页。"), loadMs);
        QVERIFY(notice()->isVisible());
        QCOMPARE(m_lan->child<QLabel>("webAddress")->text(), requestedUrl());
        QVERIFY(gone->plugIn());
        notice()->findChild<QPushButton*>("webRetry")->click();
        QTRY_VERIFY_WITH_TIMEOUT(!notice()->isVisible(), loadMs);
        QCOMPARE(title(), QString("Dashboard"));
    }

    void emptiesForAKoraBox()
    {
        m_lan->clickRow(kora);
        QTRY_COMPARE_WITH_TIMEOUT(view()->page()->url(), QUrl("about:blank"), loadMs);
        QCOMPARE(requestedUrl(), QString());
        QTRY_COMPARE(evaluate("document.URL").toString(), QString("about:blank"));
        QVERIFY(!m_lan->child<QWidget>("web_widget")->isVisible());
        // A page out of sight does not ask.
        QCOMPARE(evaluate("confirm('Still here')"), QVariant(false));
    }

    void forgetsCookies()
    {
        selectAndWait(box);
        QVERIFY(evaluate("document.cookie").toString().contains("session=1"));
        m_lan->close();
        m_lan->open();
        QTRY_VERIFY_WITH_TIMEOUT(m_lan->item(otherBox), loadMs);
        QTRY_VERIFY_WITH_TIMEOUT(m_lan->item(box), loadMs);
        selectAndWait(otherBox);
        // A page of the same box that sets none of its own.
        const QUrl about(QString("http://%1/cgi-bin/about.cgi").arg(m_lan->ip(box)));
        QVERIFY(QMetaObject::invokeMethod(view(), "setUrl", Q_ARG(QUrl, about)));
        QTRY_COMPARE_WITH_TIMEOUT(title(), QString("About this box"), loadMs);
        QCOMPARE(evaluate("document.cookie").toString(), QString());
        QVERIFY(QFileInfo::exists(qEnvironmentVariable("APPDATA") + "/KESTRELMSG/webcache"));
    }
};

int main(int argc, char* argv[])
{
    return runWebTest<TestWebView>(argc, argv);
}

#include "tst_web_view.moc"
