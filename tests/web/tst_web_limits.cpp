// SPDX-License-Identifier: MIT
#include "common/platform.h"
#include "tests/support/files.h"
#include "tests/support/scripted_server.h"
#include "tests/support/table.h"
#include "tests/web/web_view_fixture.h"

#include <QDirIterator>
#include <QSignalSpy>
#include <QWebEngineProfile>

#include <csignal>

/// Pages that mean no good: none leaves its box, keeps anything, or holds on to the window.
class TestWebLimits : public WebViewFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { openWindow(); }
    void init() { m_answers = std::make_unique<DialogAnswerer>(); }
    void cleanup() { m_answers.reset(); }
    void cleanupTestCase() { m_lan.reset(); }

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
        QTRY_VERIFY(linesOf(logFile("limits")).join('\n').contains("logins of a page"));
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

    void closesAPageThatFloods()
    {
        selectAndWait(box);
        view()->page()->runJavaScript("for (;;) console.log('x'.repeat(1e6));");
        QTRY_COMPARE_WITH_TIMEOUT(noticeText(), QString("网页已关闭。"), 3000);
        QTRY_VERIFY(notice()->isVisible());
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
        // A window that nobody sees may not go on to the next box.
        const ScriptedServer next(m_lan->ip(otherBox), httpReply("text/html", "x"),
                                  ScriptedServer::Closes);
        evaluate("w = open(''); w.eval(\"setInterval(() => fetch('" + next.url("http") +
                 "', {mode: 'no-cors', method: 'POST'}), 50)\"); 0");
        selectAndWait(otherBox);
        QVERIFY(!m_answers->isDone());
        QTest::qWait(300);
        QCOMPARE(next.taken(), 0);

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
};

int main(int argc, char* argv[])
{
    return runWebTest<TestWebLimits>(argc, argv);
}

#include "tst_web_limits.moc"
