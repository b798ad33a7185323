// SPDX-License-Identifier: MIT
#include "device/item.h"
#include "simulator/virtual_box.h"
#include "tests/support/files.h"
#include "tests/support/table.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>

namespace
{

const QString boxIp = TEST_BLOCK ".1";

} // namespace

/// A recording is deleted on its box and downloaded from it: real curl, a virtual box.
class tst_Recording : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("APPDATA", m_data.path().toUtf8()); }
    void init();
    void cleanup();
    void namesStayInTheirFolder_data();
    void namesStayInTheirFolder();
    void nothingIsOverwritten();
    void brokenDownloadsSayWhy_data();
    void brokenDownloadsSayWhy();
    void silentBoxIsGivenUp();
    void cancelledDownloadLeavesNothing();
    void folderThatTakesNoFiles();
    void deletion();

private:
    DownloadResult download(const QString& name);
    QStringList files() const { return filesIn(m_folder->path()); }
    std::unique_ptr<Item> recording(const QString& name) const;

    QTemporaryDir m_data;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<sim::VirtualBox> m_box;
};

void tst_Recording::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_box = std::make_unique<sim::VirtualBox>(boxIp);
    QVERIFY2(m_box->plugIn(), qPrintable(m_box->errorString()));
}

void tst_Recording::cleanup()
{
    CommandRunner::endAll();
    m_box.reset();
}

std::unique_ptr<Item> tst_Recording::recording(const QString& name) const
{
    auto item = std::make_unique<Item>();
    item->setProperty("filename", name);
    item->setProperty("deviceip", boxIp);
    return item;
}

DownloadResult tst_Recording::download(const QString& name)
{
    const auto item = recording(name);
    DownloadResult result;
    bool ended = false;
    connect(item.get(), &Item::downloadEnded, this, [&](const DownloadResult& r) {
        result = r;
        ended = true;
    });
    item->download(m_folder->path() + "/");
    if (!QTest::qWaitFor([&] { return ended; }, 15000))
        qWarning("the download does not end");
    return result;
}

void tst_Recording::namesStayInTheirFolder_data()
{
    columns<QString, QString>("name", "file");
    row("plain", "show.mp4", "show.mp4");
    row("blank", "evening show 2.mp4", "evening show 2.mp4");
    row("way up", "../../x.mp4", "x.mp4");
    row("absolute", "/tmp/x.mp4", "x.mp4");
    row("quotes", "the \"best\" 'take'.mp4", "the best 'take'.mp4");
    row("fragment", "take #3.mp4", "take #3.mp4");
    row("query", "why?.mp4", "why.mp4");
    row("percent", "100%25.mp4", "100%25.mp4");
    row("braces of curl's own", "{a,b}[1-3].mp4", "{a,b}[1-3].mp4");
    row("letters of all kinds", "晚会 공연 ñ.mp4", "晚会 공연 ñ.mp4");
    row("an option of curl", "-o evil.mp4", "-o evil.mp4");
}

void tst_Recording::namesStayInTheirFolder()
{
    QFETCH(QString, name);
    QFETCH(QString, file);
    const QByteArray content("the bytes of " + name.toUtf8());
    m_box->addRecording(name, content);
    const DownloadResult result = download(name);
    QVERIFY2(result.succeeded, qPrintable(result.reason));
    QCOMPARE(files(), QStringList(file));
    QCOMPARE(result.path, m_folder->path() + "/" + file);
    QCOMPARE(readFile(result.path), content);
}

void tst_Recording::nothingIsOverwritten()
{
    m_box->addRecording("a.mp4", "new");
    for (const char* name : {"/a.mp4", "/a0.mp4"})
        writeFile(m_folder->path() + name, "mine");
    // Two at once do not take the same name either.
    const auto other = recording("a.mp4");
    bool ended = false;
    connect(other.get(), &Item::downloadEnded, this, [&] { ended = true; });
    other->download(m_folder->path() + "/");
    QCOMPARE(download("a.mp4").path, m_folder->path() + "/a2.mp4");
    QTRY_VERIFY(ended);
    QCOMPARE(files(), QStringList({"a.mp4", "a0.mp4", "a1.mp4", "a2.mp4"}));
    QCOMPARE(readFile(m_folder->path() + "/a.mp4"), QByteArray("mine"));
}

void tst_Recording::brokenDownloadsSayWhy_data()
{
    columns<QString, QString>("fault", "reason");
    row("no such file", "", "设备上没有此文件");
    row("server error", "http-error 503 on media", "设备回应错误 503");
    row("fewer bytes", "hang-up 50 on media", "传输中断,文件不完整");
    row("nothing", "hang-up 0 on media", "传输中断,文件不完整");
    row("box gone", "refuse", "无法连接设备");
}

void tst_Recording::brokenDownloadsSayWhy()
{
    QFETCH(QString, fault);
    QFETCH(QString, reason);
    if (!fault.isEmpty()) {
        m_box->addRecording("a.mp4", QByteArray(300000, 'x'));
        QVERIFY(m_box->addFault(fault));
    }
    const DownloadResult result = download("a.mp4");
    QVERIFY(!result.succeeded);
    QCOMPARE(result.reason, reason);
    QCOMPARE(files(), QStringList());
}

void tst_Recording::silentBoxIsGivenUp()
{
    RecordingDownload quiet(m_folder->path() + "/", "a.mp4");
    const QByteArray flowing("\r 45 4096M   45 1843M    0     0  50.0M      0  0:01:21  0:00:36 "
                             " 0:00:45 51.1M");
    const QByteArray still("\r 45 4096M   45 1843M    0     0  40.0M      0  0:01:21  0:00:36 "
                           " 0:00:45     0");
    quiet.feed("< HTTP/1.1 200 OK\r\n" + flowing + "\r");
    QCOMPARE(quiet.progress().percent, 45);
    QCOMPARE(quiet.progress().received, QString("1843M"));
    QCOMPARE(quiet.progress().total, QString("4096M"));
    for (int second = 0; second < 29; ++second)
        quiet.feed(still + "\r");
    QVERIFY(!quiet.isStalled());
    quiet.feed(flowing + "\r");
    QVERIFY(!quiet.isStalled());
    for (int second = 0; second < 30; ++second)
        quiet.feed(still + "\r");
    QVERIFY(quiet.isStalled());
}

void tst_Recording::cancelledDownloadLeavesNothing()
{
    m_box->addRecording("a.mp4", QByteArray(2000000, 'x'));
    QVERIFY(m_box->addFault("throttle 200000 on media"));
    const auto item = recording("a.mp4");
    DownloadProgress seen;
    connect(item.get(), &Item::downloadProgressed, this,
            [&](const DownloadProgress& progress) { seen = progress; });
    QString reason("not ended");
    connect(item.get(), &Item::downloadEnded, this,
            [&](const DownloadResult& result) { reason = result.reason; });
    item->download(m_folder->path() + "/");
    QTRY_VERIFY_WITH_TIMEOUT(seen.percent > 0 && seen.percent < 100, 5000);
    QCOMPARE(files(), QStringList("a.mp4.part"));
    item->cancelDownload();
    QTRY_COMPARE(reason, QString());
    QCOMPARE(files(), QStringList());
}

void tst_Recording::folderThatTakesNoFiles()
{
    m_folder->remove();
    const DownloadResult result = download("a.mp4");
    QVERIFY(!result.succeeded);
    QCOMPARE(result.reason, QString("无法写入文件"));
}

void tst_Recording::deletion()
{
    // The box must not take what follows the "&" for another field, and delete "take".
    for (const char* name : {"take", "take&file_name=other.mp4", "50%20.mp4"})
        m_box->addRecording(name, "x");
    for (const char* name : {"take&file_name=other.mp4", "50%20.mp4", "no such.mp4"}) {
        const auto item = recording(name);
        QSignalSpy ended(item.get(), &Item::deleteEnded);
        item->record_del();
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(ended.first().first().toBool(), QString(name) != "no such.mp4");
    }
    QCOMPARE(m_box->recordings(), QStringList("take"));
}

QTEST_GUILESS_MAIN(tst_Recording)
#include "tst_recording.moc"
