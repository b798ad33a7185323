// SPDX-License-Identifier: MIT
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"
#include "tests/update/update_fixture.h"
#include "update/version.h"

#include <QRegularExpression>
#include <QSet>
#include <QTimer>

Q_DECLARE_METATYPE(sim::HttpReply)

/// The update check against a server of our own.
class tst_UpdateCheck : public UpdateFixture
{
    Q_OBJECT

private slots:
    void init() { serve(); }
    void cleanup() { m_server.reset(); }

    void versions_data()
    {
        columns<QString, bool>("latest", "newer");
        row("equal", "1.0.0.10", false);
        row("older", "1.0.0.9", false);
        row("newer in the last part", "1.0.0.11", true);
        row("three parts", "1.0.1", true);
        row("three equal parts", "1.0.0", false);
        row("two parts", "2.0", false);
        row("five parts", "2.0.0.0.0", false);
        row("first difference decides", "0.9.9.99", false);
        row("words count as 0", "1.x.0.11", true);
        row("nothing", "", false);
        row("too large for a number", "99999999999.0.0.0", false);
    }
    void versions()
    {
        QFETCH(QString, latest);
        QTEST(isNewerVersion(latest, "1.0.0.10"), "newer");
    }

    void badDescriptorsAreIgnored_data()
    {
        const auto body = [](const QByteArray& text) {
            sim::HttpReply reply;
            reply.body = text;
            return reply;
        };
        columns<sim::HttpReply>("reply");
        row("not JSON", body("<html>"));
        row("an array", body("[1]"));
        row("empty", body("{}"));
        row("no windows", body(R"({"updates": {}})"));
        row("wrong types",
            body(
                R"({"updates": {"MD5": [1], "windows": {"latest-version": 5, "download-url": {}}}})"));
        row("huge", body("{\"updates\": \"" + QByteArray(6 << 20, 'x') + "\"}"));
        sim::HttpReply reply = body("{\"updates\": {\"windows\": {\"latest-version\": \"9.0.0\"");
        reply.percent = 50;
        row("broken off", reply);
        reply = {};
        reply.status = 404;
        row("missing", reply);
        reply = {};
        reply.source = [](QByteArray*) {
            QTest::qSleep(100);
            return true;
        };
        row("silent", reply);
        reply.status = 0;
        row("closed network", reply);
    }
    void badDescriptorsAreIgnored()
    {
        QFETCH(sim::HttpReply, reply);
        m_server->set(sim::UpdateServer::programPath(), reply);
        m_server->set(sim::UpdateServer::firmwarePath(), reply);
        if (!reply.status)
            m_server->stop();
        check();
        QVERIFY(m_installers.isEmpty() && m_packages.isEmpty());
        QCOMPARE(m_server->requests().size(), reply.status ? 2 : 0);
        QCOMPARE(filesBelowData().filter("upgrade"), QStringList());
    }

    void installerIsDownloadedOnce()
    {
        m_server->set("/a/setup 2.exe", sim::UpdateServer::file("installer"));
        m_server->offerProgram("1.0.1", m_server->url("/a/setup%202.exe"));
        check();
        check();
        QCOMPARE(m_installers.size(), 2);
        QCOMPARE(m_installers.first().version, QString("1.0.1"));
        QCOMPARE(m_installers.first().name, QString("setup 2.exe"));
        QCOMPARE(m_installers.first().host, QString(TEST_BLOCK ".1:8070"));
        QCOMPARE(m_installers.first().path, upgradeFolder() + "1.0.1_setup 2.exe");
        QCOMPARE(m_installers.first().digest, sha256Of("installer"));
        QCOMPARE(m_installers.last().path, m_installers.first().path);
        QCOMPARE(m_server->requests().count("GET /a/setup 2.exe"), 1);
    }

    /// What another version was called, or a part of it, is not what is offered, and does not stay.
    void leftoversAreNotOffered()
    {
        for (const char* name : {"setup.exe", "1.0.0.11_setup.exe", "1.0.1_setup.exe.Xy12Zz"})
            writeFile(upgradeFolder() + name, "old");
        writeFile(upgradeFolder() + "upgrade_20240501_115950_000.csv", "a report");
        m_server->set("/setup.exe", sim::UpdateServer::file("new"));
        m_server->offerProgram("1.0.1", m_server->url("/setup.exe"));
        check();
        QCOMPARE(m_installers.value(0).digest, sha256Of("new"));
        m_server->set("/setup.exe", sim::UpdateServer::file("newer"));
        m_server->offerProgram("1.0.2", m_server->url("/setup.exe"));
        check();
        QCOMPARE(m_installers.value(1).digest, sha256Of("newer"));
        QCOMPARE(filesIn(upgradeFolder()),
                 (QStringList{"1.0.2_setup.exe", "upgrade_20240501_115950_000.csv"}));
        // The program has become that version.
        m_server->offerProgram("1.0.0.10", m_server->url("/setup.exe"));
        check();
        QCOMPARE(filesIn(upgradeFolder()), QStringList("upgrade_20240501_115950_000.csv"));
    }

    void installersThatAreNone_data()
    {
        columns<QString>("url");
        row("missing", "/no.exe");
        row("broken off", "/half.exe");
        row("no name", "/");
        row("a file of this computer", "file:///etc/hostname");
        row("another protocol", "ftp://" TEST_BLOCK ".1/x.exe");
        row("no address at all", "x.exe");
        row("no host", "http:///x.exe");
        row("another server", "http://" TEST_BLOCK ".2:8070/x.exe");
        row("another port", "http://" TEST_BLOCK ".1:8071/x.exe");
        row("to a user", "http://a:b@" TEST_BLOCK ".1:8070/x.exe");
        row("led elsewhere", "/elsewhere.exe");
    }
    void installersThatAreNone()
    {
        QFETCH(QString, url);
        sim::HttpReply half = sim::UpdateServer::file(QByteArray(500000, 'x'));
        half.percent = 50;
        m_server->set("/half.exe", half);
        sim::HttpReply elsewhere;
        elsewhere.status = 302;
        elsewhere.location = "http://" TEST_BLOCK ".2:8070/x.exe";
        m_server->set("/elsewhere.exe", elsewhere);
        sim::UpdateServer others[] = {sim::UpdateServer(TEST_BLOCK ".2"),
                                      sim::UpdateServer(TEST_BLOCK ".1", 8071)};
        for (sim::UpdateServer* other : {&others[0], &others[1], m_server.get()}) {
            other->set("/x.exe", sim::UpdateServer::file("x"));
            QVERIFY(other == m_server.get() || other->start());
        }
        m_server->offerProgram("2.0.0", url.startsWith("/") ? m_server->url(url) : url);
        check();
        QVERIFY(m_installers.isEmpty());
        QCOMPARE(filesBelowData().filter("upgrade"), QStringList());
    }

    void firmwareIsCheckedAndKept()
    {
        const QByteArray package(300000, 'k');
        m_server->set("/fw", sim::UpdateServer::file(package, "..\\..//KORA_1.2.0.623.dat"));
        m_server->offerFirmware(md5Of(package).toUpper(), m_server->url("/fw"));
        check();
        const QString path = m_data->path() + "/data/Tarn Hub/upgradekora/KORA_1.2.0.623.dat";
        QCOMPARE(m_packages, QStringList(path));
        QCOMPARE(QFileInfo(path).size(), qint64(package.size()));
        check();
        QCOMPARE(m_packages.size(), 2);
        QCOMPARE(m_server->requests().count("GET /fw"), 1);
        // One that was spoilt since is fetched again.
        writeFile(path, package + "x");
        check();
        QCOMPARE(m_server->requests().count("GET /fw"), 2);
        QCOMPARE(QFileInfo(path).size(), qint64(package.size()));
        // Nothing that the server called otherwise earlier stays.
        for (const char* ending : {".1", "/../upgrade_1.dat"})
            writeFile(QDir::cleanPath(path + ending), "earlier");
        const auto running = started();
        QTRY_COMPARE(filesIn(QFileInfo(path).path()), QStringList("KORA_1.2.0.623.dat"));
    }

    void badPackagesLeaveNothing_data()
    {
        const QByteArray package(300000, 'k');
        columns<sim::HttpReply, QString>("reply", "digest");
        sim::HttpReply reply = sim::UpdateServer::file(package, "fw.dat");
        row("wrong digest", reply, md5Of("other"));
        row("no digest", reply, "");
        row("no name", sim::UpdateServer::file(package), md5Of(package));
        reply.percent = 60;
        row("broken off", reply, md5Of(package));
        reply = {};
        reply.location = "/elsewhere";
        row("led elsewhere", reply, md5Of(package));
    }
    void badPackagesLeaveNothing()
    {
        const auto [reply, digest] = cells<sim::HttpReply, QString>();
        m_server->set("/fw", reply);
        m_server->offerFirmware(digest, m_server->url("/fw"));
        check();
        QCOMPARE(m_packages, QStringList());
        QCOMPARE(filesBelowData().filter("upgradekora"), QStringList());
    }

    void offeredNamesStayInTheFolder_data()
    {
        // "name": of a package; an installer is named by its address
        columns<QString, QString, QString>("path", "name", "file");
        row("up", "/", "../../evil.dat", "upgradekora/evil.dat");
        row("up, the other way", "/", "..\\..\\evil.dat", "upgradekora/evil.dat");
        row("from the root", "/", "/tmp/evil.dat", "upgradekora/evil.dat");
        row("very long", "/", QString(4000, 'x') + ".dat",
            "upgradekora/" + QString(196, 'x') + ".dat");
        row("markup and signs", "/", "<b>%1 $(id) `id` --help.dat",
            "upgradekora/b%1 $(id) `id` --help.dat");
        row("encoded separators", "/a/..%2F..%2Fevil.exe", "", "upgrade/2.0.0_evil.exe");
        row("encoded, the other way", "/a/..%5C..%5Cevil.exe", "", "upgrade/2.0.0_evil.exe");
        row("encoded dots", "/a/%2E%2E%2F%2E%2E%2Fevil.exe", "", "upgrade/2.0.0_evil.exe");
        row("a journal", "/upgrade_20240501_115950_000.json", "",
            "upgrade/2.0.0_upgrade_20240501_115950_000.json");
    }
    void offeredNamesStayInTheFolder()
    {
        const auto [path, name, file] = cells<QString, QString, QString>();
        // Whatever is asked for gets an answer: only the name decides.
        m_server->setOthers(sim::UpdateServer::file("content", name));
        if (name.isEmpty())
            m_server->offerProgram("2.0.0", m_server->url(path));
        else
            m_server->offerFirmware(md5Of("content"), m_server->url(path));
        check();
        QCOMPARE(m_packages.size() + m_installers.size(), 1);
        QCOMPARE(filesBelowData().filter(QRegularExpression("evil|upgrade")),
                 QStringList("data/Tarn Hub/" + file));
    }

    /// A program may end at any moment of a download: what is there by then is no installer.
    void halfInstallerIsNoInstaller()
    {
        offerSlowly(400000);
        const QString path = upgradeFolder() + "1.0.1_slow";
        QSet<qint64> sizes;
        int missing = 0;
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&] {
            if (QFileInfo::exists(path))
                sizes << QFileInfo(path).size();
            else
                ++missing;
        });
        watch.start(20);
        check();
        QVERIFY2(missing > 50, "the download was too fast to be watched");
        QTRY_COMPARE(sizes, QSet<qint64>{400000});
        QCOMPARE(m_installers.size(), 1);
    }

    /// Somebody waits for a box while an installer comes in for seconds.
    void slowPackagesHoldNobodyUp()
    {
        offerSlowly(600000);
        sim::HttpReply box;
        box.body = "{}";
        box.bytesPerSecond = 5;
        m_server->set("/box", box);

        Stopwatch clock;
        const auto check = started();
        QCOMPARE(Spark_Http::instance()->get("x", m_server->url("/box"), true), QString("{}"));
        const qint64 answeredMs = clock.elapsed();
        VERIFY_BELOW(answeredMs, 1500);
        QVERIFY(check->isBusy());
        QTRY_VERIFY_WITH_TIMEOUT(!check->isBusy(), 15000);
        QVERIFY2(clock.elapsed() > 2500, "the packages were not slow");
    }

    void givenUpDownloadsLeaveNothing()
    {
        offerSlowly(4000000);
        auto check = started();
        QTRY_COMPARE(m_server->requests().count("GET /slow"), 2);
        Stopwatch clock;
        check.reset();
        VERIFY_BELOW(clock.elapsed(), 1000);
        QCOMPARE(filesBelowData().filter("/upgrade"), QStringList());
    }

private:
    /// An installer and a package that take as many seconds as they have 200000 bytes.
    void offerSlowly(int size)
    {
        sim::HttpReply slow = sim::UpdateServer::file(QByteArray(size, 'i'), "fw.dat");
        slow.bytesPerSecond = 200000;
        m_server->set("/slow", slow);
        m_server->offerProgram("1.0.1", m_server->url("/slow"));
        m_server->offerFirmware(md5Of(slow.body), m_server->url("/slow"));
    }
};

QTEST_GUILESS_MAIN(tst_UpdateCheck)
#include "tst_update_check.moc"
