// SPDX-License-Identifier: MIT
#ifndef TESTS_WEB_WEB_VIEW_FIXTURE_H
#define TESTS_WEB_WEB_VIEW_FIXTURE_H

#include "tests/support/window_fixture.h"
#include "web/browser_engine.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QWebEngineView>

#include <unistd.h>

/// The real window among boxes with pages of their own. The engine lives once per process, so one
/// window serves all tests.
class WebViewFixture : public QObject
{
protected:
    static constexpr int box = 11;
    static constexpr int otherBox = 12;
    static constexpr int kora = 13;
    static constexpr int loadMs = 20000;

    void openWindow()
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

    /// The next dialog of a page, whose class the library of the engine alone knows, is answered
    /// so.
    void expectPage(const std::function<void(QDialog&)>& act)
    {
        m_answers->expect<QDialog>(act, [](QDialog& it) { return it.inherits("PageDialog"); });
    }

    std::unique_ptr<WindowFixture> m_lan;
    std::unique_ptr<DialogAnswerer> m_answers;
};

/// The main function of a test that has such a window.
template <typename Test> int runWebTest(int argc, char* argv[])
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
    Test test;
    return QTest::qExec(&test, argc, argv);
}

#endif
