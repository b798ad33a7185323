// SPDX-License-Identifier: MIT
#include "common/box_protocol.h"
#include "common/command_runner.h"
#include "common/json_map.h"
#include "common/limits.h"
#include "common/platform.h"
#include "tests/support/files.h"
#include "tests/support/plugged_box.h"
#include "tests/support/process.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace
{

const QString boxIp = TEST_BLOCK ".1";

} // namespace

/// Real curl against a virtual box.
class tst_CommandRunner : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void textTravelsWhole_data();
    void textTravelsWhole();
    void asynchronousReply();
    void waitingServesEventsAndEnds_data();
    void waitingServesEventsAndEnds();
    void currentFolderIsNotSearched();
    void missingProgramGivesAnEmptyReply();
    void burstStartsOneATurn();
    void orderEndsAtItsLimit();
    void oneReplyForACommand_data();
    void oneReplyForACommand();
    void everyEventIsLogged();
    void nothingOutlivesTheProgram();
    void commandsStartAgainAfterAnEnd();

private:
    QTemporaryDir m_data;
    std::unique_ptr<sim::VirtualBox> m_box;
    std::unique_ptr<CommandRunner> m_runner;
    QList<QProcess*> m_started;
    QStringList m_replies;
    int m_ended = 0;
};

void tst_CommandRunner::initTestCase()
{
    qputenv("APPDATA", m_data.path().toUtf8());
    Platform::useUtf8ForChildProcesses();
    // What an office sets for its browsers: no box is behind it.
    qputenv("http_proxy", "http://" TEST_BLOCK ".254:9");
    qputenv("HOME", m_data.path().toUtf8());
    writeFile(m_data.filePath(".curlrc"), "proxy = " TEST_BLOCK ".254:9\nfail\nsilent\n");
}

void tst_CommandRunner::init()
{
    m_started.clear();
    m_replies.clear();
    m_ended = 0;
    m_box.reset();
    m_box = pluggedBox(boxIp);
    m_runner = std::make_unique<CommandRunner>("Tarn_Hub", [this](QProcess* process) {
        m_started << process;
        connect(process, &QProcess::readyReadStandardOutput, this,
                [this, process] { m_replies << m_runner->takeReply(process); });
        connect(process, &QProcess::stateChanged, this, [this, process](auto state) {
            if (state != QProcess::NotRunning)
                return;
            m_runner->noteEnd(process);
            ++m_ended;
        });
    });
}

void tst_CommandRunner::textTravelsWhole_data()
{
    columns<QString>("text");
    row("blanks", "My  box name");
    row("quotes", R"(a "quoted" name")");
    row("single quotes", "it's");
    row("backslashes", R"(\\server\share\)");
    row("placeholders", "%1 %2 %3");
    row("other alphabets", QString::fromUtf8("舞台左 무대 Bühne"));
    row("tries to add arguments", R"(x" -o /tmp/evil http://127.0.0.1 ")");
    row("markup", "<b>&amp;</b>");
}

void tst_CommandRunner::textTravelsWhole()
{
    QFETCH(QString, text);
    const QString reply = m_runner->execCurlWait(
        boxIp,
        BoxProtocol::setCommand(BoxProtocol::NDIName, BoxProtocol::escapeEquals(text), boxIp));
    QCOMPARE(jsonToMap(reply).value("status").toString(), QString("set success"));
    QCOMPARE(m_box->requests().size(), 1);
    QCOMPARE(m_box->requests().first().body,
             QByteArray("action=set&param_name=eParam_NDIName&value=") + text.toUtf8());
}

void tst_CommandRunner::asynchronousReply()
{
    m_runner->execCurl(boxIp, BoxProtocol::controlCommand("stream_off", boxIp),
                       {{"deviceip", boxIp}, {"recodefilename", "a.mp4"}});
    QCOMPARE(m_started.size(), 1);
    QCOMPARE(m_started.first()->property("ip").toString(), boxIp);
    QCOMPARE(m_started.first()->property("recodefilename").toString(), QString("a.mp4"));
    const QPointer<QProcess> process = m_started.first();
    QTRY_COMPARE(m_ended, 1);
    QCOMPARE(jsonToMap(m_replies.join("")).value("action").toString(), QString("stream_off"));
    QTRY_VERIFY(!process);
}

void tst_CommandRunner::waitingServesEventsAndEnds_data()
{
    columns<QString>("fault");
    row("silent box", "silent");
    row("box hangs up", "hang-up 0");
    row("10 MB of garbage", "huge 10000000");
    row("closed port", "refuse");
}

void tst_CommandRunner::waitingServesEventsAndEnds()
{
    QFETCH(QString, fault);
    QVERIFY(m_box->addFault(fault));
    int ticks = 0;
    QTimer ticker;
    connect(&ticker, &QTimer::timeout, this, [&] { ++ticks; });
    ticker.start(5);
    Stopwatch clock;
    const QString reply =
        m_runner->execCurlWait(boxIp, BoxProtocol::controlCommand("hxenc_on", boxIp));
    VERIFY_BELOW(clock.elapsed(), CommandRunner::WaitLimitMs + 1000);
    QVERIFY(ticks > 0);
    QVERIFY(!jsonToMap(reply).contains("status"));
}

void tst_CommandRunner::currentFolderIsNotSearched()
{
    const QTemporaryDir folder;
    for (const char* name : {"curl", "fping"})
        writeScript(folder.filePath(name), "echo planted\n");
    const QString here = QDir::currentPath();
    const QByteArray path = qgetenv("PATH");
    QDir::setCurrent(folder.path());
    qputenv("PATH", QByteArray(".;;").replace(';', QDir::listSeparator().toLatin1()) + path);
    const QString fping = Platform::fpingPath(QString());
    const QString reply =
        m_runner->execCurlWait(boxIp, BoxProtocol::controlCommand("hxenc_on", boxIp));
    qputenv("PATH", path);
    QDir::setCurrent(here);
    QCOMPARE(jsonToMap(reply).value("action").toString(), QString("hxenc_on"));
    QVERIFY2(QDir::isAbsolutePath(fping) && !fping.startsWith(folder.path()), qPrintable(fping));
}

void tst_CommandRunner::missingProgramGivesAnEmptyReply()
{
    QCOMPARE(m_runner->execCurlWait(boxIp, "no-such-program -x"), QString());
    QCOMPARE(m_runner->execCurlWait(boxIp, ""), QString());
    m_runner->execCurl(boxIp, "no-such-program -x", {});
    QTRY_COMPARE(m_ended, 1);
    QVERIFY(m_replies.isEmpty());
}

/// Many boxes ask for a command in the same moment, and one of them is given up before its turn.
void tst_CommandRunner::burstStartsOneATurn()
{
    constexpr int count = 20;
    constexpr int stopped = 15;
    for (int n = 0; n < count; ++n)
        m_runner->execCurl(
            boxIp,
            n == 7 ? "no-such-program"
                   : BoxProtocol::setCommand(BoxProtocol::NDIName, QString::number(n), boxIp),
            {});
    QCOMPARE(m_started.size(), count);
    // The first starts at once, unless a command has just been started in this turn.
    for (int n = 1; n < count; ++n)
        QCOMPARE(m_started[n]->state(), QProcess::NotRunning);
    CommandRunner::stop(m_started[stopped]);

    QList<int> order;
    for (int n = 0; n < count; ++n)
        connect(m_started[n], &QProcess::stateChanged, this, [&order, n](auto state) {
            if (state == QProcess::Starting)
                order << n;
        });
    QTRY_COMPARE(m_ended, count);
    QVERIFY(order.size() >= count - 1);
    QVERIFY(std::is_sorted(order.cbegin(), order.cend()));
    QCOMPARE(m_box->requests().size(), count - 2);
    for (const auto& request : m_box->requests())
        QVERIFY(!request.body.endsWith("value=" + QByteArray::number(stopped)));
}

void tst_CommandRunner::orderEndsAtItsLimit()
{
    QVERIFY(m_box->addFault("silent"));
    m_runner->execCurl(boxIp, BoxProtocol::controlCommand("reboot", boxIp), {});
    CommandRunner::limit(m_started.first(), 200);
    QTRY_COMPARE_WITH_TIMEOUT(m_ended, 1, 3000);
    QCOMPARE(m_replies, QStringList());
}

void tst_CommandRunner::oneReplyForACommand_data()
{
    columns<QStringList>("faults");
    row("without end", QStringList{"endless on hxenc_on"});
    row("over and over", QStringList{"chatter 0 on hxenc_on"});
    row("over and over, slowly",
        QStringList{"throttle 20000 on hxenc_on", "chatter 0 on hxenc_on"});
    // A reply of just the length at which curl hands on what it has got.
    const QString wide = "fail on hxenc_on as " + QString(4096 - 40, 'f');
    row("whole, then more",
        QStringList{wide, "throttle 20000 on hxenc_on", "chatter 9 on hxenc_on"});
}

/// Whatever a box goes on to say: not more than one reply is handed on, the command ends, and the
/// log does not grow.
void tst_CommandRunner::oneReplyForACommand()
{
    QFETCH(QStringList, faults);
    for (const QString& fault : faults)
        QVERIFY2(m_box->addFault(fault), qPrintable(fault));
    const QString key = TEST_BLOCK ".98";
    QFile::remove(logFile(key));
    m_runner->execCurl(key, BoxProtocol::controlCommand("hxenc_on", boxIp), {});
    QTRY_COMPARE_WITH_TIMEOUT(m_ended, 1, 9000);
    m_replies.removeAll(QString());
    QVERIFY2(m_replies.size() <= 1, qPrintable(QString::number(m_replies.size())));
    QTRY_VERIFY(linesOf(logFile(key)).join("").contains("停止"));
    VERIFY_BELOW(QFileInfo(logFile(key)).size(), 4 * Limits::LogRecordChars);
    if (faults.first().startsWith("endless"))
        QTRY_VERIFY(linesOf(logFile("limits")).join("").contains(key + "  over the limit"));
}

void tst_CommandRunner::everyEventIsLogged()
{
    const QString key = TEST_BLOCK ".99";
    const QString command = BoxProtocol::controlCommand("hxenc_on", boxIp);
    m_runner->execCurl(key, command, {});
    QTRY_COMPARE(m_ended, 1);
    m_runner->execCurlWait(key, command);
    QTRY_COMPARE(linesOf(logFile(key)).size(), 5);
    const QString all = linesOf(logFile(key)).join('\n');
    for (const char* part : {":Tarn_Hub::execCurl]", ":Tarn_Hub::execCurlWait]",
                             ":Tarn_Hub::R_readyReadStandardOutput]", ":Tarn_Hub::R_stateChanged]",
                             "  执行Curl   curl -d \"action=hxenc_on\"", "  执行Curl返回数据   {",
                             "  执行Curl 停止 ]"})
        QVERIFY2(all.contains(QString::fromUtf8(part)), part);
}

void tst_CommandRunner::nothingOutlivesTheProgram()
{
    QVERIFY(m_box->addFault("silent"));
    m_runner->execCurl(boxIp, BoxProtocol::controlCommand("hxenc_on", boxIp), {});
    const QPointer<QProcess> process = m_started.first();
    QVERIFY(process->waitForStarted());
    const qint64 pid = process->processId();
    QVERIFY(isRunning(pid));
    CommandRunner::endAll();
    QVERIFY(!process);
    QVERIFY(!isRunning(pid));
}

/// One command is just starting and others wait; the next window must not have to wait for them.
void tst_CommandRunner::commandsStartAgainAfterAnEnd()
{
    const QString command = BoxProtocol::controlCommand("hxenc_on", boxIp);
    for (int n = 0; n < 3; ++n)
        m_runner->execCurl(boxIp, command, {});
    CommandRunner::endAll();
    const int before = m_ended;
    m_runner->execCurl(boxIp, command, {});
    QTRY_COMPARE(m_ended, before + 1);
    QCOMPARE(m_box->requests().size(), 1);
}

QTEST_GUILESS_MAIN(tst_CommandRunner)
#include "tst_command_runner.moc"
