// SPDX-License-Identifier: MIT
#include "tests/support/window_fixture.h"

#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QUrl>

#ifdef TARN_PROGRAM_FOLDER
#include <unistd.h>
#endif

namespace
{

constexpr int box = 11;
constexpr int otherBox = 12;
constexpr int kora = 13;
constexpr int loadMs = 20000;
#ifdef Q_OS_WIN
#define LIBRARY "tarn-web-engine.dll"
#else
#define LIBRARY "tarn-web-engine.so"
#endif

#ifdef Q_OS_LINUX
/// Whether a file of such a name is mapped into this process.
bool isMapped(const QByteArray& name)
{
    QFile maps("/proc/self/maps");
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(name);
}
#endif

} // namespace

/// The window with and without the library of the browser engine. It is loaded once per process:
/// these tests stand in the order in which a user could meet them.
class TestBrowserEngine : public QObject
{
    Q_OBJECT

public slots:
    void noteUrl(const QUrl& url) { m_opened = url; }

private slots:
    void initTestCase()
    {
        // The program's own folder is that of the tests: no engine there.
        m_lan = std::make_unique<WindowFixture>();
        m_lan->addBox(box, sim::BoxModel::Orbit);
        m_lan->addBox(otherBox, sim::BoxModel::River);
        m_lan->addBox(kora);
        m_lan->open();
        for (int host : {box, otherBox, kora})
            QTRY_VERIFY_WITH_TIMEOUT(m_lan->item(host), loadMs);
    }
    void cleanupTestCase() { m_lan.reset(); }

#ifdef Q_OS_LINUX
    void isNotLoadedWithoutAPage()
    {
        m_lan->clickRow(kora);
        QTRY_VERIFY(m_lan->child<QWidget>("right_widget")->isVisible());
        QVERIFY(isMapped("libQt5Widgets"));
        for (const char* name : {"WebEngine", "tarn-web-engine", "libLLVM", "_dri.so"})
            QVERIFY2(!isMapped(name), name);
    }
#endif

    void saysThatItIsNotInstalled()
    {
        m_lan->clickRow(box);
        QTRY_COMPARE(reason(), QString("内置浏览器不可用：它没有安装。"));
        auto* open = m_lan->child<QPushButton>("webOpen");
        QVERIFY(m_lan->child<QLabel>("webReason")->isVisible() && open->isVisible());
        const QString page = QString("http://%1/cgi-bin/set-dashboard.cgi").arg(m_lan->ip(box));
        QCOMPARE(m_lan->child<QLabel>("webAddress")->text(), page);
        QDesktopServices::setUrlHandler("http", this, "noteUrl");
        open->click();
        QCOMPARE(m_opened, QUrl(page));
    }

    void saysThatItIsIncomplete()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir("plugins"));
        QFile library(folder.path() + "/plugins/" LIBRARY);
        QVERIFY(library.open(QIODevice::WriteOnly) && library.write("cut short") > 0);
        library.close();
        QCoreApplication::addLibraryPath(folder.path());
        m_lan->clickRow(otherBox);
        QTRY_COMPARE(reason(), QString("内置浏览器不可用：它的程序文件不完整。"));
        QVERIFY(m_lan->child<QPushButton>("webOpen")->isVisible());
        QCoreApplication::removeLibraryPath(folder.path());
    }

private:
    QString reason() const
    {
        return m_lan->child<QLabel>("webReason")->text();
    }

    std::unique_ptr<WindowFixture> m_lan;
    QUrl m_opened;

#ifdef TARN_PROGRAM_FOLDER // the engine is built
private slots:
    void isLoadedWithTheFirstPage()
    {
        QCoreApplication::addLibraryPath(TARN_PROGRAM_FOLDER);
        m_lan->clickRow(box);
        QTRY_VERIFY_WITH_TIMEOUT(m_lan->window().findChild<QWidget*>("webEngineView"), loadMs);
        QVERIFY(isMapped("libQt5WebEngineCore"));
        QTRY_COMPARE_WITH_TIMEOUT(
            m_lan->child<QWidget>("webEngineView")->property("title").toString(),
            QString("Dashboard"), loadMs);
        QVERIFY(m_lan->child<QWidget>("webEngineView")->isVisible());
    }

#endif
};

#ifdef TARN_PROGRAM_FOLDER
#endif

int main(int argc, char* argv[])
{
#ifdef TARN_PROGRAM_FOLDER
    if (::geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); // as the scripts do
#endif
    StartUp::setAttributes();
    QApplication application(argc, argv);
    StartUp::dress(application);
    TestBrowserEngine test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_browser_engine.moc"
