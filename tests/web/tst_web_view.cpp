// SPDX-License-Identifier: MIT
#include "common/platform.h"
#include "tests/support/scripted_server.h"
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"
#include "web/browser_engine.h"
#include "web/download_name.h"

#include <QDialog>
#include <QDirIterator>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTextEdit>
#include <QWebEngineProfile>
#include <QWebEngineView>

#include <csignal>
#include <unistd.h>

namespace
{

constexpr int box = 11;
constexpr int otherBox = 12;
constexpr int kora = 13;
constexpr int loadMs = 20000;

/// Known to the library of the engine alone.
const char* const pageDialog = "PageDialog";

} // namespace

/// Boxes with pages of their own in the real window. The engine lives once per process, so one
/// window serves all tests.
class TestWebView : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY2(
            BrowserEngine::obstacle() == BrowserEngine::Obstacle::None,
            "This system gives the engine no sandbox; QTWEBENGINE_DISABLE_SANDBOX=1 does without.");
        m_lan = std::make_unique<WindowFixture>();
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        m_lan->addBox(box, sim::BoxModel::Orbit);
        m_lan->addBox(otherBox, sim::BoxModel::River);
        m_lan->addBox(kora);
        m_lan->open();
        for (int host : {box, otherBox, kora})
            QTRY_VERIFY_WITH_TIMEOUT(m_lan->item(host), loadMs);
    }
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

    void keepsAPageWithItsBox_data()
    {
        columns<QString>("script");
        row("picture", "new Image().src = 'http://%1/a'");
        row("script's request", "fetch('http://%1/a', {mode: 'no-cors', method: 'POST'})");
        row("on leaving", "navigator.sendBeacon('http://%1/a', 'x')");
        row("frame", "document.body.append(Object.assign(document.createElement('iframe'), {src: "
                     "'http://%1/a'}))");
        row("socket", "new WebSocket('ws://%1/a')");
        row("socket of a worker",
            "new Worker(URL.createObjectURL(new Blob([\"new WebSocket('ws://%1/a')\"])))");
        row("socket of a frame",
            "document.body.append(Object.assign(document.createElement('iframe'"
            "), {srcdoc: \"<script>new WebSocket('ws://%1/a')</script>\"}))");
        row("form",
            "f = document.createElement('form'); f.method = 'POST'; f.action = 'http://%1/a';"
            "document.body.append(f); f.submit()");
        row("page", "location = 'http://%1/a'");
        row("redirect of a picture", "new Image().src = 'http://%2/a'");
        row("redirect of a page", "location = 'http://%2/a'");
    }
    void keepsAPageWithItsBox()
    {
        QFETCH(QString, script);
        const ScriptedServer other(TEST_BLOCK ".77", httpReply("text/html", "<title>Other</title>"),
                                   ScriptedServer::Closes);
        const QString there = other.url("http").section('/', 2, 2);
        const ScriptedServer same(m_lan->ip(box),
                                  "HTTP/1.1 302 x\r\nContent-Length: 0\r\nLocation: http://" +
                                      there.toUtf8() + "/a\r\n\r\n",
                                  ScriptedServer::Closes);
        selectAndWait(box);
        QCOMPARE(evaluate("document.compatMode").toString(), QString("CSS1Compat"));
        evaluate(script.arg(there, same.url("http").section('/', 2, 2)) + "; 0");
        auto* bar = view()->parentWidget()->findChild<QWidget*>("pageBar");
        if (!script.contains("ws:")) {
            QTRY_VERIFY_WITH_TIMEOUT(bar->isVisible(), loadMs);
            QCOMPARE(bar->findChild<QLabel*>()->text(),
                     QString("此网页想访问另一台主机：" TEST_BLOCK ".77"));
        }
        QTest::qWait(300);
        QCOMPARE(other.taken(), 0);
        if (!script.startsWith("location = 'http://%1"))
            return;
        bar->findChild<QPushButton*>("pageBarYes")->click();
        QTRY_COMPARE_WITH_TIMEOUT(title(), QString("Other"), loadMs);
        QVERIFY(!bar->isVisible());
    }

    void asksForFewLogins()
    {
        selectAndWait(box);
        int shown = 0;
        const std::function<void(QDialog&)> tryAgain = [&](QDialog& dialog) {
            ++shown;
            expectPage(tryAgain);
            dialog.accept();
        };
        expectPage(tryAgain);
        click("login");
        auto* bar = view()->parentWidget()->findChild<QWidget*>("pageBar");
        QTRY_VERIFY_WITH_TIMEOUT(bar->isVisible(), loadMs);
        QCOMPARE(shown, 3);
        QTRY_COMPARE_WITH_TIMEOUT(title(), QString("401 Unauthorized"), loadMs);
    }

    void keepsNothing()
    {
        selectAndWait(box);
        QVERIFY(view()->page()->profile()->isOffTheRecord());
        const auto ownBytes = [] {
            return Platform::residentBytes(QCoreApplication::applicationPid());
        };
        const qint64 before = ownBytes();
        // All of it would be 1.5 GB.
        evaluate("o = indexedDB.open('db', 1); o.onupgradeneeded = () => "
                 "o.result.createObjectStore('s'); o.onsuccess = () => { let n = 0; const put = () "
                 "=> { const t = o.result.transaction('s', 'readwrite'); "
                 "t.objectStore('s').put('y'.repeat(1e7), ++n); t.oncomplete = () => n < 150 ? "
                 "put() : 0; }; put(); }; 0");
        QTRY_COMPARE_WITH_TIMEOUT(noticeText(), QString("网页已关闭。"), loadMs);
        QTRY_VERIFY(notice()->isVisible());
        qint64 bytes = 0;
        QDirIterator files(qEnvironmentVariable("APPDATA"), QDirIterator::Subdirectories);
        while (files.hasNext()) {
            files.next();
            bytes += files.fileInfo().isFile() ? files.fileInfo().size() : 0;
        }
        QVERIFY2(bytes < 1000000, qPrintable(QString::number(bytes)));
        QTRY_VERIFY2_WITH_TIMEOUT(ownBytes() - before < 100000000,
                                  qPrintable(QString::number(ownBytes() - before)), 10000);
    }

    void closesAPageThatHangs()
    {
        selectAndWait(box);
        view()->page()->runJavaScript("while (true);");
        auto* bar = view()->parentWidget()->findChild<QWidget*>("pageBar");
        QTRY_VERIFY_WITH_TIMEOUT(bar->isVisible(), loadMs);
        bar->findChild<QPushButton*>("pageBarYes")->click();
        QTRY_COMPARE_WITH_TIMEOUT(noticeText(), QString("网页已关闭。"), loadMs);
        QVERIFY(!bar->isVisible());
        notice()->findChild<QPushButton*>("webRetry")->click();
        QTRY_VERIFY_WITH_TIMEOUT(!notice()->isVisible(), loadMs);
        QCOMPARE(title(), QString("Dashboard"));
    }

    void leavesAPageThatHoldsOn()
    {
        selectAndWait(box);
        evaluate("onbeforeunload = e => { e.preventDefault(); e.returnValue = ''; }; 0");
        // Only a page that its user has touched is allowed to ask.
        click("alert");
        expectPage([](QDialog& dialog) { dialog.accept(); });
        QTRY_VERIFY_WITH_TIMEOUT(m_answers->isDone(), loadMs);
        expectPage([](QDialog& dialog) { dialog.reject(); });
        selectAndWait(otherBox);
        QVERIFY(!m_answers->isDone());

        view()->page()->runJavaScript("while (true);");
        const qint64 process = view()->page()->renderProcessPid();
        selectAndWait(box);
        // It does not go on out of sight either.
        QTRY_VERIFY(::kill(pid_t(process), 0) != 0);
    }

    void reloadsACrashedPage()
    {
        QSignalSpy ended(view(), &QWebEngineView::renderProcessTerminated);
        // Again and again: there is no limit, and the window goes on.
        for (int n = 1; n <= 3; ++n) {
            ::kill(pid_t(view()->page()->renderProcessPid()), SIGKILL);
            QTRY_COMPARE_WITH_TIMEOUT(ended.size(), n, loadMs);
            QTRY_VERIFY_WITH_TIMEOUT(view()->page()->renderProcessPid() > 0, loadMs);
            QTRY_VERIFY_WITH_TIMEOUT(!notice()->isVisible(), loadMs);
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

private:
    QWebEngineView* view() const
    {
        return m_lan->window().findChild<QWebEngineView*>("webEngineView");
    }
    QWidget* notice() const { return view()->parentWidget()->findChild<QWidget*>("pageNotice"); }
    QString noticeText() const { return notice()->findChild<QLabel*>("webMessage")->text(); }
    QString requestedUrl() const { return view()->property("requestedUrl").toString(); }

    QVariant evaluate(const QString& script) const
    {
        QVariant result;
        bool done = false;
        view()->page()->runJavaScript(script, [&](const QVariant& value) {
            result = value;
            done = true;
        });
        if (!QTest::qWaitFor([&] { return done; }, loadMs))
            qWarning("no answer to %s", qPrintable(script));
        return result;
    }

    void selectAndWait(int host)
    {
        // The page before may be of the same box: only the end of this load tells them apart.
        bool loaded = !view();
        QObject context;
        if (!loaded) {
            QTRY_VERIFY_WITH_TIMEOUT(m_lan->child<QWidget>("webProgress")->isHidden(), loadMs);
            connect(view(), &QWebEngineView::loadFinished, &context,
                    [&loaded](bool ok) { loaded = ok; });
        }
        m_lan->clickRow(host);
        QTRY_VERIFY_WITH_TIMEOUT(view() != nullptr, loadMs);
        QTRY_VERIFY_WITH_TIMEOUT(loaded, loadMs);
        QTRY_VERIFY_WITH_TIMEOUT(!notice()->isVisible(), loadMs);
        QCOMPARE(view()->page()->url().host(), m_lan->ip(host));
    }

    void click(const QString& id) const
    {
        // As a user's click, which alone may open windows and start downloads.
        const QVariantList spot =
            evaluate(QString("(r => [r.x + r.width / 2, r.y + r.height / 2])"
                             "(document.getElementById('%1').getBoundingClientRect())")
                         .arg(id))
                .toList();
        QCOMPARE(spot.size(), 2);
        QTest::mouseClick(view()->focusProxy(), Qt::LeftButton, {},
                          QPoint(spot[0].toInt(), spot[1].toInt()));
    }

    QString title() const { return view()->page()->title(); }

    /// The next dialog of a page is answered so.
    void expectPage(const std::function<void(QDialog&)>& act)
    {
        m_answers->expect<QDialog>(act, [](QDialog& it) { return it.inherits(pageDialog); });
    }

    std::unique_ptr<WindowFixture> m_lan;
    std::unique_ptr<DialogAnswerer> m_answers;
};

int main(int argc, char* argv[])
{
    if (::geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); // as the scripts do
    // Nobody who works with boxes is sent there.
    for (const char* name : {"http_proxy", "https_proxy", "all_proxy"})
        qputenv(name, "http://" TEST_BLOCK ".76:9");
    StartUp::setAttributes();
    QApplication application(argc, argv);
    QCoreApplication::addLibraryPath(TARN_PROGRAM_FOLDER);
    StartUp::dress(application);
    TestWebView test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_web_view.moc"
