// SPDX-License-Identifier: MIT
#include "simulator/lan_commands.h"
#include "simulator/open_files.h"
#include "simulator/scenario.h"
#include "simulator/virtual_lan.h"
#include "tests/support/box_client.h"
#include "tests/support/files.h"
#include "tests/support/stopwatch.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace sim;

namespace
{

LanPlan plan(const QString& subnet, int boxes)
{
    LanPlan plan;
    plan.subnet = subnet;
    plan.boxes = boxes;
    plan.rebootMs = 200;
    plan.restartMs = 100;
    plan.web = false;
    return plan;
}

/// kora-lan or lan-fping, as people and scripts start them.
class Program : public QProcess
{
public:
    Program(const QString& name, const QStringList& arguments, const QString& runDir)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(VirtualLan::runVariable(), runDir);
        setProcessEnvironment(environment);
        start(QString(KORA_LAN_BIN) + '/' + name, arguments);
    }
    ~Program() override
    {
        kill();
        waitForFinished(3000);
    }

    /// Everything on standard output so far, until `word` is in it.
    bool says(const QString& word)
    {
        while (!output.contains(word) && waitForReadyRead(5000))
            output += newWords();
        return output.contains(word);
    }
    /// What it has written to standard output since, with line ends as here.
    QString newWords() { return QString::fromUtf8(readAllStandardOutput().replace("\r\n", "\n")); }

    QString output;
};

} // namespace

/// Many boxes: plans, scenarios, the programs kora-lan and lan-fping.
class tst_VirtualLan : public QObject
{
    Q_OBJECT

private slots:
    void plansThatDoNotFit()
    {
        VirtualLan lan;
        QVERIFY(!lan.populate(plan(TEST_BLOCK ".0/24", 245)));
        for (const char* subnet : {"boxes", TEST_BLOCK ".0/16", "fe80::/24"})
            QVERIFY2(!lan.populate(plan(subnet, 1)) && !lan.errorString().isEmpty(), subnet);
    }

    void pluggedFileFollowsTheBoxes()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("plugged");
        {
            VirtualLan lan(dir.path());
            QVERIFY(lan.populate(plan(TEST_BLOCK ".0/24", 3)));
            QVERIFY(QFile::exists(file));
            QCOMPARE(linesOf(file), QStringList());
            QVERIFY2(lan.plugInAll({TEST_BLOCK ".13"}), qPrintable(lan.errorString()));
            QCOMPARE(linesOf(file), (QStringList{TEST_BLOCK ".11", TEST_BLOCK ".12"}));
            QVERIFY(lan.find(TEST_BLOCK ".12")->moveTo(TEST_BLOCK ".99"));
            QCOMPARE(linesOf(file), (QStringList{TEST_BLOCK ".11", TEST_BLOCK ".99"}));
            QVERIFY(lan.find(TEST_BLOCK ".12") == nullptr);
            lan.find(TEST_BLOCK ".11")->reboot();
            QTRY_COMPARE(linesOf(file), QStringList{TEST_BLOCK ".99"});
            QTRY_COMPARE(linesOf(file), (QStringList{TEST_BLOCK ".11", TEST_BLOCK ".99"}));
        }
        QVERIFY(QFile::exists(file));
        QCOMPARE(linesOf(file), QStringList());
    }

    void lineCommands()
    {
        VirtualLan lan;
        QVERIFY(lan.populate(plan(TEST_BLOCK ".0/24", 2)));
        QVERIFY(lan.plugInAll());
        LanCommands commands(&lan);
        VirtualBox* const box = lan.find(TEST_BLOCK ".11");
        QVERIFY(commands.run("unplug " TEST_BLOCK ".11").ok);
        QVERIFY(!box->isOn());
        QVERIFY(commands.run("  plug   " TEST_BLOCK ".11 ").ok);
        QVERIFY(box->isOn());
        QVERIFY(commands.run("set " TEST_BLOCK ".11 eParam_NDIName Two words").ok);
        QCOMPARE(box->parameter("eParam_NDIName"), "Two words");
        QVERIFY(commands.run("fault " TEST_BLOCK ".11 fail on reboot").ok);
        QCOMPARE(command(TEST_BLOCK ".11", "reboot").status(), "failed");
        QVERIFY(commands.run("list").text.contains("fail on reboot"));
        QVERIFY(commands.run("log " TEST_BLOCK ".11").text.contains("POST /control action=reboot"));
        QVERIFY(commands.run("clear " TEST_BLOCK ".11").ok);
        QVERIFY(box->faults().isEmpty());
        QVERIFY(commands.run("quit").quit);
        for (const char* wrong :
             {"unplug", "unplug " TEST_BLOCK ".200", "move " TEST_BLOCK ".11 " TEST_BLOCK ".12",
              "dance", "move " TEST_BLOCK ".11 8.8.8.8", "fault " TEST_BLOCK ".11 nonsense",
              "set " TEST_BLOCK ".11 x"}) {
            const LanCommands::Answer answer = commands.run(wrong);
            QVERIFY2(!answer.ok && !answer.text.isEmpty(), wrong);
        }
    }

    void boxesSwapAddresses()
    {
        VirtualLan lan;
        QVERIFY(lan.populate(plan(TEST_BLOCK ".0/24", 2)));
        QVERIFY(lan.plugInAll());
        LanCommands commands(&lan);
        VirtualBox* const box = lan.find(TEST_BLOCK ".11");
        VirtualBox* const other = lan.find(TEST_BLOCK ".12");
        const QString mac = box->parameter("eParam_MACAddress");
        other->setRebootTime(400, 400); // one is back while the other is still away
        QVERIFY(commands.run("swap " TEST_BLOCK ".11 " TEST_BLOCK ".12").ok);
        QVERIFY(!box->isReachable() && !other->isReachable());
        QTRY_VERIFY(box->isOn() && other->isOn());
        QCOMPARE(valueOf(TEST_BLOCK ".12", "eParam_MACAddress"), mac);
        QVERIFY(valueOf(TEST_BLOCK ".11", "eParam_MACAddress") != mac);
        // Twins, and a version that somebody else changed.
        QVERIFY(commands.run("set " TEST_BLOCK ".11 eParam_MACAddress " + mac).ok);
        QVERIFY(commands.run("set " TEST_BLOCK ".11 eParam_FirmVersion 9.9").ok);
        QCOMPARE(valueOf(TEST_BLOCK ".11", "eParam_MACAddress"), mac);
        QCOMPARE(valueOf(TEST_BLOCK ".11", "eParam_FirmVersion"), "9.9");
    }

    void scenario();

    void wrongScenarios()
    {
        QTemporaryDir dir;
        for (const char* content :
             {"{boxes}", "[]", R"({"boxs": []})", R"({"steps": [{"command": "list"}]})",
              R"({"boxes": [{"address": "@.9", "fault": "slow"}]})",
              R"({"boxes": [{"address": "@.9", "faults": ["slwo"]}]})",
              R"({"boxes": [{"address": "@.9", "model": "karo"}]})"}) {
            VirtualLan lan;
            Scenario scenario;
            const QByteArray json = QByteArray(content).replace('@', TEST_BLOCK);
            QVERIFY2(!scenario.load(writeFile(dir.filePath("s.json"), json), &lan), content);
            QVERIFY(!scenario.errorString().isEmpty());
        }
    }

    void aFullSubnet()
    {
        // Each box listens on four ports; six connections to each have both ends and a thread here.
        // A system that allows less than all of them at once still gets a good part of a subnet.
        const int boxes = std::min(253, (allowOpenFiles() - 100) / (4 + 6 * 3));
        LanPlan full = plan(TEST_BLOCK ".0/24", boxes);
        full.first = 1;
        VirtualLan lan;
        Stopwatch clock;
        QVERIFY(lan.populate(full));
        QVERIFY2(lan.plugInAll(), qPrintable(lan.errorString()));
        qInfo("%d boxes plugged in after %lld ms", boxes, clock.elapsed());

        // All of them asked for eight things at once.
        QNetworkAccessManager manager;
        manager.setProxy(QNetworkProxy::NoProxy); // nor is one looked for
        int good = 0;
        int done = 0;
        const int wanted = boxes * 8;
        clock.restart();
        for (int i = 0; i < wanted; ++i) {
            const QString address = QString(TEST_BLOCK ".%1").arg(1 + i % boxes);
            const QUrl url(apiUrl(address, "/config?action=get&param_name=eParam_IPAddress"));
            QNetworkReply* const reply = manager.get(QNetworkRequest(url));
            connect(reply, &QNetworkReply::finished, this, [reply, address, &good, &done] {
                const QJsonObject object = QJsonDocument::fromJson(reply->readAll()).object();
                good += object.value("value").toString() == address ? 1 : 0;
                ++done;
                reply->deleteLater();
            });
        }
        QTRY_COMPARE_WITH_TIMEOUT(done, wanted, 20000);
        qInfo("%d reads answered after %lld ms", done, clock.elapsed());
        QCOMPARE(good, wanted);
    }

    void sweepFindsOnlyPluggedBoxes()
    {
        QTemporaryDir dir;
        VirtualLan lan(dir.path());
        QVERIFY(lan.populate(plan(TEST_BLOCK ".0/24", 3)));
        QVERIFY(lan.plugInAll({TEST_BLOCK ".12"}));
        Program check("lan-fping",
                      {"-a", "-r", "2", "-t", "200", TEST_BLOCK ".11", TEST_BLOCK ".12"},
                      dir.path());
        QVERIFY(check.waitForFinished());
        QCOMPARE(check.newWords(), QString(TEST_BLOCK ".11\n"));

        Program sweep("lan-fping", {"-a", "-r", "0", "-t", "100", "-g", TEST_BLOCK ".0/24"},
                      dir.path());
        QVERIFY(sweep.waitForReadyRead()); // line by line, long before the sweep is over
        QCOMPARE(sweep.state(), QProcess::Running);
        QVERIFY(sweep.waitForFinished());
        QCOMPARE(sweep.newWords(), QString(TEST_BLOCK ".11\n" TEST_BLOCK ".13\n"));
    }

    void killedSweepLeavesNoFping()
    {
        QTemporaryDir dir;
        VirtualLan lan(dir.path());
        // A stand-in for fping that tells its number and would run for a long time without a word.
        const QString pidFile = dir.filePath("pid");
        const QString fake = writeScript(dir.filePath("fping"),
                                         "echo $$ > " + pidFile.toUtf8() + "\nexec sleep 20\n");
        qputenv("KORA_LAN_FPING", fake.toLocal8Bit());
        Program sweep("lan-fping", {"-a"}, dir.path());
        qunsetenv("KORA_LAN_FPING");
        QTRY_VERIFY(linesOf(pidFile).value(0).toInt() > 0);
        const qint64 pid = linesOf(pidFile).first().toLongLong();
        QVERIFY(isScriptRunning(pid));
        sweep.kill();
        QVERIFY(sweep.waitForFinished());
        QTRY_VERIFY(!isScriptRunning(pid));
    }

    void koraLanObeys()
    {
        QTemporaryDir dir;
        Program program("kora-lan",
                        {"--subnet", TEST_BLOCK ".0/24", "--boxes", "2", "--web-port", "8880",
                         "--run-dir", dir.path()},
                        dir.path());
        QVERIFY2(program.says("ready\n"), qPrintable(program.output));
        QCOMPARE(program.output.count(TEST_BLOCK "."), 5);
        QCOMPARE(linesOf(dir.filePath("plugged")).size(), 5);
        QVERIFY(curl({"http://" TEST_BLOCK ".13:8880/cgi-bin/set-dashboard.cgi"})
                    .output.contains("ORBIT"));
        program.write("unplug " TEST_BLOCK ".11\nnonsense\n");
        QVERIFY(program.says("ok\n"));
        QVERIFY(program.says("error\n"));
        QCOMPARE(linesOf(dir.filePath("plugged")).size(), 4);
        program.closeWriteChannel();
        QCOMPARE(readParameter(TEST_BLOCK ".12", "eParam_DHCP").exitCode, 0);
        QVERIFY2(!program.waitForFinished(300), "the end of its input is no order to end");
#ifdef Q_OS_UNIX // no program without a window hears a request elsewhere
        program.terminate();
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        QVERIFY(QFile::exists(dir.filePath("plugged")));
        QCOMPARE(linesOf(dir.filePath("plugged")), QStringList());
#endif
    }

    void koraLanOptions()
    {
        QTemporaryDir dir;
        for (const char* line :
             {"--help 0", "--version 0", "--bogus 2", "--boxes many 2", "127.0.0.1 2",
              "--scenario /no/such/file 2", "--subnet 10.0.0.0/24 1"}) {
            QStringList words = QString(line).split(' ');
            const int exitCode = words.takeLast().toInt();
            Program program("kora-lan", QStringList{"--run-dir", dir.path()} + words, dir.path());
            QVERIFY2(program.waitForFinished() && program.exitCode() == exitCode, line);
            QCOMPARE(program.readAllStandardError().isEmpty(), exitCode == 0);
        }
    }

    void koraLanEndsWithParent()
    {
        QTemporaryDir dir;
        Program parent("kora-lan", {"--subnet", TEST_BLOCK ".0/24", "--boxes", "1", "--no-web"},
                       dir.filePath("parent"));
        QVERIFY(parent.says("ready\n"));
        Program program("kora-lan",
                        {"--subnet", TEST_BLOCK ".0/24", "--boxes", "0", "--no-web", "--run-dir",
                         dir.path(), "--exit-with-parent", QString::number(parent.processId())},
                        dir.path());
        QVERIFY(program.says("ready\n"));
        parent.kill();
        QVERIFY(parent.waitForFinished());
        QVERIFY(program.waitForFinished(5000));
        QCOMPARE(program.exitCode(), 0);
    }
};

/// Not in the class: moc does not know such a raw string.
void tst_VirtualLan::scenario()
{
    QTemporaryDir dir;
    const QString path = writeFile(dir.filePath("s.json"), QByteArray(R"({"boxes": [
        {"address": "@.11", "faults": ["fail reboot"], "plugged": false},
        {"address": "@.50", "parameters": {"eParam_NDIName": "<b>\"x\"</b>"},
         "recordings": ["a.mp4", "b.jpg"], "decode_sources": ["A (B): 1"]}],
        "steps": [{"after_seconds": 0.1, "command": "plug @.11"},
                  {"after_seconds": 0.2, "command": "unplug @.9"}]})")
                                                               .replace('@', TEST_BLOCK));
    VirtualLan lan;
    Scenario scenario;
    QVERIFY(lan.populate(plan(TEST_BLOCK ".0/24", 1)));
    QVERIFY2(scenario.load(path, &lan), qPrintable(scenario.errorString()));
    QVERIFY(lan.plugInAll(scenario.unplugged()));
    QVERIFY(!lan.find(TEST_BLOCK ".11")->isOn());
    QCOMPARE(valueOf(TEST_BLOCK ".50", "eParam_NDIName"), "<b>\"x\"</b>");
    QCOMPARE(lan.find(TEST_BLOCK ".50")->recordings(), (QStringList{"b.jpg", "a.mp4"}));
    LanCommands commands(&lan);
    QSignalSpy steps(&scenario, &Scenario::stepped);
    scenario.start(&commands);
    QTRY_COMPARE(steps.size(), 2);
    QVERIFY(lan.find(TEST_BLOCK ".11")->isOn());
    QCOMPARE(command(TEST_BLOCK ".11", "reboot").status(), "failed");
    QVERIFY(steps[1][0].toString().contains("no box at"));
}

QTEST_GUILESS_MAIN(tst_VirtualLan)
#include "tst_virtual_lan.moc"
