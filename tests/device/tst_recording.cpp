// SPDX-License-Identifier: MIT
#include "common/box_protocol.h"
#include "tests/support/box_client.h"
#include "tests/support/files.h"
#include "tests/support/held_file.h"
#include "tests/support/plugged_box.h"
#include "tests/support/recording_item.h"
#include "tests/support/scripted_server.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QFileSystemWatcher>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>

namespace
{

const QString boxIp = TEST_BLOCK ".1";
/// A recording whose bytes tell their place.
const QByteArray whole = [] {
    QByteArray bytes;
    for (int n = 0; bytes.size() < 800000; ++n)
        bytes += QByteArray::number(n) + ' ';
    return bytes;
}();
constexpr DownloadPatience hasty{1, 1, 3, 30, 300};

} // namespace

/// Downloading a recording: real curl, a virtual box.
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
    void leavesRoomOnTheDisk();
    void goesOnWhereItBrokeOff_data();
    void goesOnWhereItBrokeOff();
    void goesOnAfterARestart_data();
    void goesOnAfterARestart();
    void otherBoxIsNotTakenForIt();
    void diskThatHangsHoldsNobodyUp_data();
    void diskThatHangsHoldsNobodyUp();
    void wholePartGetsItsName();
    void crashLeavesOneThatWrites();
    void meterIsReadAsItComes();
    void cancelledDownloadLeavesNothing();
    void folderThatTakesNoFiles();

private:
    DownloadResult download(const RecordingSource& source,
                            const DownloadPatience& patience = hasty);
    DownloadResult download(const QString& name) { return download(source(name)); }
    QString folder() const { return m_folder->path() + "/"; }
    QStringList files() const { return filesIn(m_folder->path()); }
    static RecordingSource source(const QString& name) { return {boxIp, QString(), name}; }

    QTemporaryDir m_data;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<sim::VirtualBox> m_box;
};

void tst_Recording::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_box = pluggedBox(boxIp);
}

void tst_Recording::cleanup()
{
    CommandRunner::endAll();
    m_box.reset();
}

DownloadResult tst_Recording::download(const RecordingSource& source,
                                       const DownloadPatience& patience)
{
    RecordingDownload download(folder(), source, patience);
    DownloadResult result;
    bool ended = false;
    connect(&download, &RecordingDownload::ended, this, [&](const DownloadResult& r) {
        result = r;
        ended = true;
    });
    download.start();
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
    const auto [name, file] = cells<QString, QString>();
    const QByteArray content("the bytes of " + name.toUtf8());
    m_box->addRecording(name, content);
    const DownloadResult result = download(name);
    QVERIFY2(result.succeeded, qPrintable(result.reason));
    QCOMPARE(files(), QStringList(file));
    QCOMPARE(result.path, folder() + file);
    QCOMPARE(readFile(result.path), content);
}

void tst_Recording::nothingIsOverwritten()
{
    m_box->addRecording("a.mp4", "new");
    for (const char* name : {"a.mp4", "a0.mp4"})
        writeFile(folder() + name, "mine");
    // Two at once do not take the same name either.
    const auto other = recordingItem(boxIp, "a.mp4");
    bool ended = false;
    connect(other.get(), &Item::downloadEnded, this, [&] { ended = true; });
    other->download(folder());
    QVERIFY(download("a.mp4").succeeded);
    QTRY_VERIFY(ended);
    QCOMPARE(files(), QStringList({"a.mp4", "a0.mp4", "a1.mp4", "a2.mp4"}));
    QCOMPARE(readFile(folder() + "a.mp4"), QByteArray("mine"));
}

void tst_Recording::brokenDownloadsSayWhy_data()
{
    columns<QString, QString>("fault", "reason");
    row("no such file", "", "设备上没有此文件");
    row("server error", "http-error 503 on media", "设备回应错误 503");
    row("nothing", "hang-up 0 on media", "传输中断，文件不完整");
    row("box gone", "refuse", "无法连接设备");
    row("fewer bytes", "hang-up 50 on media", "传输中断，文件不完整");
}

void tst_Recording::brokenDownloadsSayWhy()
{
    const auto [fault, reason] = cells<QString, QString>();
    const bool isHalf = fault.contains("50 on");
    if (!fault.isEmpty()) {
        m_box->addRecording("a.mp4", whole);
        QVERIFY(m_box->addFault(fault));
    }
    const DownloadResult result = download("a.mp4");
    QVERIFY(!result.succeeded);
    QCOMPARE(result.reason, reason);
    QCOMPARE(result.kept, isHalf);
    QCOMPARE(files(), isHalf ? QStringList("a.mp4.part") : QStringList());
}

void tst_Recording::leavesRoomOnTheDisk()
{
    // More than any disk has, and what fits is taken all the same.
    DownloadPatience patience = hasty;
    patience.reserve = std::numeric_limits<qint64>::max();
    m_box->addRecording("a.mp4", whole);
    QVERIFY(m_box->addFault("throttle 400000 on media"));
    QVERIFY(download(source("a.mp4"), patience).succeeded);
    m_box->clearFaults();
    const ScriptedServer endless(TEST_BLOCK ".9", "HTTP/1.1 200 OK\r\n\r\n" + whole,
                                 ScriptedServer::StaysOpen, 8081);
    const DownloadResult result = download({TEST_BLOCK ".9", QString(), "b.mp4"}, patience);
    QCOMPARE(result.reason, QString("无法写入文件"));
    QCOMPARE(files(), QStringList("a.mp4"));
}

void tst_Recording::goesOnWhereItBrokeOff_data()
{
    columns<QStringList, int>("faults", "requests");
    row("broken once", QStringList("hang-up 40 on media times 1"), 2);
    row("broken again and again",
        QStringList({"hang-up 20 on media times 1", "hang-up 0 on media times 1",
                     "hang-up 70 on media times 1"}),
        4);
    row("a box that sends no ranges", QStringList({"hang-up 40 on media times 1", "no-ranges"}), 3);
    row("falls silent in the middle", QStringList("stall 40 on media times 1"), 2);
    // The meter stands in front of the answer then, and nothing comes for some seconds.
    row("slow to begin", QStringList("slow 2600 on media"), 1);
}

void tst_Recording::goesOnWhereItBrokeOff()
{
    QFETCH(QStringList, faults);
    m_box->addRecording("a.mp4", whole);
    for (const QString& fault : faults)
        QVERIFY(m_box->addFault(fault));
    const DownloadResult result = download(source("a.mp4"), {1, 1, 3, 5, 300});
    QVERIFY2(result.succeeded, qPrintable(result.reason));
    QVERIFY(readFile(result.path) == whole);
    QCOMPARE(files(), QStringList("a.mp4"));
    QTEST(m_box->requests().size(), "requests");
}

void tst_Recording::goesOnAfterARestart_data()
{
    columns<QByteArray, QStringList>("now", "files");
    row("the same", whole, QStringList("a.mp4"));
    row("another of this name", whole.mid(1), QStringList("a.mp4"));
    row("a shorter one", whole.left(1000), QStringList("a.mp4"));
    row("nothing", QByteArray(), QStringList("a.mp4.part"));
}

void tst_Recording::goesOnAfterARestart()
{
    QFETCH(QByteArray, now); // on the box
    m_box->addRecording("a.mp4", whole);
    QVERIFY(m_box->addFault("throttle 150000 on media"));
    {
        // A program that ends in the middle of its download.
        RecordingDownload first(folder(), source("a.mp4"));
        qint64 received = 0;
        connect(&first, &RecordingDownload::progressed, this,
                [&](const DownloadProgress& progress) { received = progress.received; });
        first.start();
        QTRY_VERIFY(received > 0);
    }
    QTRY_COMPARE(files(), QStringList("a.mp4.part"));
    const qint64 kept = QFileInfo(folder() + "a.mp4.part").size();
    QVERIFY(kept > 0 && kept < whole.size());
    m_box->clearFaults();
    m_box->removeRecording("a.mp4");
    if (!now.isEmpty())
        m_box->addRecording("a.mp4", now);
    m_box->clearRequests();
    // One of another name, or box, leaves it alone.
#ifdef Q_OS_WIN // where this would be the same name
    const QString other = "b.mp4";
#else
    const QString other = "A.mp4";
#endif
    m_box->addRecording(other, "x");
    QVERIFY(download(other).succeeded);
    QVERIFY(QFile::remove(folder() + other));

    const DownloadResult result = download("a.mp4");
    QCOMPARE(result.succeeded, !now.isEmpty());
    QTEST(files(), "files");
    QVERIFY(now.isEmpty() || readFile(result.path) == now);
    QCOMPARE(result.kept, now.isEmpty());
}

void tst_Recording::otherBoxIsNotTakenForIt()
{
    const QString mac = m_box->parameter("eParam_MACAddress");
    m_box->addRecording("a.mp4", whole);
    QVERIFY(m_box->addFault("hang-up 40 on media"));
    QVERIFY(download({boxIp, mac, "a.mp4"}).kept);
    m_box->clearFaults();
    // The address is another box's now, with another recording of this name.
    m_box->setParameter("eParam_MACAddress", "02:00:00:00:00:01");
    m_box->addRecording("a.mp4", whole.mid(1));
    const DownloadResult refused = download({boxIp, mac, "a.mp4"});
    QCOMPARE(refused.reason, QString("此地址上现在是另一台设备"));
    QVERIFY(refused.kept);
    QCOMPARE(QFileInfo(folder() + "a.mp4.part").size(), qint64(whole.size() * 40 / 100));
    QCOMPARE(download({boxIp, mac, "b.mp4"}).kept, false);

    m_box->setParameter("eParam_MACAddress", mac);
    m_box->addRecording("a.mp4", whole);
    QVERIFY(m_box->addFault("hang-up 0 on eParam_MACAddress times 2"));
    const DownloadResult result = download({boxIp, mac.toLower(), "a.mp4"});
    QVERIFY2(result.succeeded, qPrintable(result.reason));
    QVERIFY(readFile(result.path) == whole);
    QCOMPARE(files(), QStringList("a.mp4"));
}

void tst_Recording::diskThatHangsHoldsNobodyUp_data()
{
    columns<bool>("isCancelled");
    row("the operator cancels", true);
    row("the program ends", false);
}

void tst_Recording::diskThatHangsHoldsNobodyUp()
{
    NEED_HELD_FILES();
    QFETCH(bool, isCancelled);
    m_box->addRecording("a.mp4", whole);
    QVERIFY(QDir(m_data.path()).mkpath("Tarn Hub/download"));
    auto disk = std::make_unique<HeldFile>(m_data.path() + "/Tarn Hub/download/x.json");
    QVERIFY(disk->isHeld());
    const Stopwatch clock;
    auto download = std::make_unique<RecordingDownload>(folder(), source("a.mp4"));
    QSignalSpy ended(download.get(), &RecordingDownload::ended);
    download->start();
    if (isCancelled) {
        download->cancel();
        QTRY_COMPARE(ended.size(), 1);
    }
    download.reset();
    VERIFY_BELOW(clock.elapsed(), 3000);
    // It answers again: nothing is left of what nobody waits for.
    const QFileSystemWatcher watcher({folder()});
    QSignalSpy changed(&watcher, &QFileSystemWatcher::directoryChanged);
    disk.reset();
    QTRY_VERIFY(!changed.isEmpty());
    QTRY_COMPARE(files(), QStringList());
}

void tst_Recording::wholePartGetsItsName()
{
    // The program died before it could rename: nothing is fetched again, nor when the box has
    // another one now.
    for (const bool changed : {false, true}) {
        m_box->addRecording("a.mp4", changed ? whole.mid(7) : whole);
        {
            PartFile part(folder(), source("a.mp4"));
            QVERIFY(part.open());
            part.setLength(whole.size());
            writeFile(part.partPath(), whole);
            // Two at once do not share it.
            PartFile other(folder(), source("a.mp4"));
            QVERIFY(other.open() && other.partPath() != part.partPath());
        }
        QVERIFY(download("a.mp4").succeeded);
        QVERIFY(readFile(folder() + "a.mp4") == whole);
        QCOMPARE(files(), changed ? QStringList({"a.mp4", "a0.mp4"}) : QStringList("a.mp4"));
        QVERIFY(QFile::remove(folder() + "a.mp4"));
        m_box->removeRecording("a.mp4");
    }
    QVERIFY(readFile(folder() + "a0.mp4") == whole.mid(7));
}

void tst_Recording::crashLeavesOneThatWrites()
{
    m_box->addRecording("a.mp4", whole);
    QVERIFY(m_box->addFault("throttle 500000 on media"));
    QProcess left;
    {
        PartFile part(folder(), source("a.mp4"));
        QVERIFY(part.open());
        part.setLength(whole.size());
        left.start("curl", {"-s", "-o", part.partPath(), apiUrl(boxIp, "/media/a.mp4")});
        QTRY_VERIFY(part.size() > 0);
    }
    const DownloadResult result = download("a.mp4");
    QVERIFY2(result.succeeded, qPrintable(result.reason));
    QVERIFY(readFile(result.path) == whole);
    // Nothing came twice.
    QCOMPARE(m_box->requests().size(), 2);
    left.waitForFinished();
}

void tst_Recording::meterIsReadAsItComes()
{
    const QByteArray flowing("\r 45 4096M   45 1843M    0     0  50.0M      0  0:01:21  0:00:36 "
                             " 0:00:45 51.1M");
    const QByteArray still("\r 45 4096M   45 1843M    0     0  40.0M      0  2d 07h  0:00:36 "
                           " 0:00:45     0");
    CurlReport report;
    const auto feed = [&report](const QByteArray& text) {
        for (const char c : text)
            report.feed(QByteArray(1, c));
    };
    feed(still + "< HTTP/1.1 206 Partial Content\r\n< CONTENT-RANGE: bytes 7-8/4294967296\r\n" +
         flowing + "\r");
    QCOMPARE(report.httpStatus(), 206);
    QCOMPARE(report.totalBytes(), qint64(4294967296));
    QCOMPARE(report.receivedBytes(), qint64(1843) * 1024 * 1024);
    for (int second = 1; second <= 30; ++second) {
        feed(still + "\r");
        QCOMPARE(report.silentReports(), second);
    }
    // What a box says is no report of the meter, and none of curl.
    feed(flowing + "{ [5 bytes data]\n< X: curl: (7) no\n< Y: < HTTP/1.1 404 x\ncurl: (18) end\n");
    QCOMPARE(report.silentReports(), 0);
    QCOMPARE(report.httpStatus(), 206);
    QCOMPARE(report.error(), QString("(18) end"));
    // What no server and no meter says is not believed, nor is it more than a number holds.
    feed("< HTTP/1.1 20 x\n");
    QCOMPARE(report.httpStatus(), 0);
    feed(QByteArray(flowing).replace("1843M", QByteArray(30, '9') + 'P') + "\r");
    QVERIFY(report.receivedBytes() >= 0);
    feed(QByteArray(flowing).replace("1843M", "1.8.4") + "\r");
    QVERIFY(report.receivedBytes() >= 0);
    // Of what is sent, too, in its own column.
    QCOMPARE(report.sentPercent(), 0);
    feed("\r 45 4096M    0     0   45 1843M      0  50.0M  0:01:21  0:00:36  0:00:45 51.1M\r");
    QCOMPARE(report.sentPercent(), 44);
    feed("\r 45 9999P    0     0   45 9999P      0  50.0M  0:01:21  0:00:36  0:00:45 51.1M\r");
    QCOMPARE(report.sentPercent(), 100);
}

void tst_Recording::cancelledDownloadLeavesNothing()
{
    m_box->addRecording("a.mp4", QByteArray(2000000, 'x'));
    QVERIFY(m_box->addFault("throttle 200000 on media"));
    const auto item = recordingItem(boxIp, "a.mp4");
    DownloadProgress seen;
    connect(item.get(), &Item::downloadProgressed, this,
            [&](const DownloadProgress& progress) { seen = progress; });
    QString reason("not ended");
    connect(item.get(), &Item::downloadEnded, this,
            [&](const DownloadResult& result) { reason = result.reason; });
    item->download(folder());
    QTRY_VERIFY_WITH_TIMEOUT(seen.received > 0 && seen.received < seen.total, 5000);
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

QTEST_GUILESS_MAIN(tst_Recording)
#include "tst_recording.moc"
