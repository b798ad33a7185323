// SPDX-License-Identifier: MIT
#include "tests/support/scripted_server.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"
#include "tests/update/update_fixture.h"

#include <QProcess>
#include <QSslConfiguration>
#include <QTimer>

/// Whose updates are taken: only those of a server that proves who it is, and of who has the key.
class tst_UpdateTrust : public UpdateFixture
{
    Q_OBJECT

private slots:
    void init() { serve(); }
    void cleanup() { m_server.reset(); }

    void encryptedDescriptorsLeadToNothingPlain()
    {
        m_server->set("/setup.exe", sim::UpdateServer::file("installer", "fw.dat"));
        const QString url = m_server->url("/setup.exe");
        UpdateCheck check(*Spark_Http::instance(), {"https://" TEST_BLOCK ".1", {}}, "1.0.0.10");
        check.handleProgram(
            QString(R"({"updates":{"windows":{"latest-version":"9.0.0","download-url":"%1"}}})")
                .arg(url));
        check.handleFirmware(QString(R"({"updates":{"MD5":"%1","download-url":"%2"}})")
                                 .arg(md5Of("installer"), url));
        QVERIFY(!check.isBusy());
        QTest::qWait(300);
        QCOMPARE(m_server->requests(), QStringList());
    }

    /// Who cannot prove to be the update server is asked nothing.
    void encryptedServersProveWhoTheyAre()
    {
        NEED_ENCRYPTED_SERVERS();
        for (bool trusted : {false, true}) {
            ScriptedServer server(TEST_BLOCK ".1", "?", ScriptedServer::Closes);
            encrypt(&server);
            // This is the installer, too.
            server.setReply(httpReply(
                "application/json",
                QString(R"({"updates":{"windows":{"latest-version":"2.0.0","download-url":"%1"}}})")
                    .arg(m_url + "/setup.exe")
                    .toUtf8()));
            checkTrusting(trusted);
            QCOMPARE(server.asked(), trusted ? 3 : 0);
            QCOMPARE(m_installers.size(), trusted ? 1 : 0);
        }
    }

    void encryptedServersHaveTheUsualLimits_data()
    {
        columns<QByteArray>("headers");
        row("cookies", QByteArray("Set-Cookie: a=b; Path=/\r\n").repeated(20000));
    }
    void encryptedServersHaveTheUsualLimits()
    {
        NEED_ENCRYPTED_SERVERS();
        QFETCH(QByteArray, headers);
        ScriptedServer server(TEST_BLOCK ".1", "HTTP/1.1 200 OK\r\n" + headers + "\r\n\r\n{}");
        encrypt(&server);
        qint64 longest = 0;
        Stopwatch since;
        QTimer beat;
        connect(&beat, &QTimer::timeout, [&] { longest = qMax(longest, since.restart()); });
        beat.start(1);
        checkTrusting(true);
        qInfo("%lld ms", longest);
        QCOMPARE(server.asked(), 2);
        VERIFY_BELOW(longest, 500);
    }

    /// Nothing that a server says before a package fills the memory or holds up the end.
    void packagesHaveTheUsualLimits()
    {
        class Server : public ScriptedServer
        {
        public:
            using ScriptedServer::ScriptedServer;

        protected:
            QByteArray replyTo(const QByteArray& request) override
            {
                return request.startsWith("GET /wp-")
                           ? ScriptedServer::replyTo(request)
                           : "HTTP/1.1 200 OK\r\n" +
                                 QByteArray("Set-Cookie: a=b; Path=/\r\n").repeated(20000) +
                                 "\r\nx";
            }
        } server(TEST_BLOCK ".1", {}, ScriptedServer::Closes);
        m_url = server.url("http", "").chopped(1);
        server.setReply(httpReply(
            "application/json",
            QString(R"({"updates":{"MD5":"%1","download-url":"%2","windows":{"latest-version":)"
                    R"("2.0.0","download-url":"%2"}}})")
                .arg(md5Of("x"), m_url + "/a.exe")
                .toUtf8()));
        check();
        QCOMPARE(m_installers.size(), 0);
        QCOMPARE(m_packages, QStringList());
        QCOMPARE(server.asked(), 4);
    }

    void signatures_data()
    {
        using Lie = sim::UpdateServer::Lie;
        columns<QString, int, QString>("key", "lie", "told");
        row("signed", "key", int(Lie::None), "");
        row("not signed", "", int(Lie::None), "not signed");
        row("by somebody else", "other key", int(Lie::None), "wrong signature");
        row("of another kind", "key", int(Lie::Kind), "wrong signature");
        row("of another version", "key", int(Lie::Version), "wrong signature");
        row("of another name", "key", int(Lie::Name), "wrong signature");
        row("of another file", "key", int(Lie::Digest), "");
    }
    /// With a key, only what bears its signature is offered.
    void signatures()
    {
        const auto [key, lie, told] = cells<QString, int, QString>();
        const bool isFine = told.isEmpty() && lie == int(sim::UpdateServer::Lie::None);
        m_key = run(SIGN_UPDATE, {"--public", keyFile("key")}).trimmed();
        QCOMPARE(QByteArray::fromBase64(m_key).size(), 32);
        m_server->signWith(key.isEmpty() ? QString() : keyFile(key), sim::UpdateServer::Lie(lie));
        m_server->set("/setup.exe", sim::UpdateServer::file("installer"));
        m_server->set("/fw.dat", sim::UpdateServer::file("firmware", "fw.dat"));
        m_server->offerProgram("1.0.1", m_server->url("/setup.exe"));
        m_server->offerFirmware(md5Of("firmware"), m_server->url("/fw.dat"));
        check();
        QCOMPARE(m_installers.size(), isFine ? 1 : 0);
        QCOMPARE(m_packages.size(), m_installers.size());
        if (isFine)
            QCOMPARE(QFileInfo(m_installers.first().path).fileName(),
                     "1.0.1_" + sha256Of("installer").left(16) + "_setup.exe");
        else
            QCOMPARE(filesIn(upgradeFolder()), QStringList());
        QTRY_VERIFY(told.isEmpty() || readFile(logFile("update")).contains(told.toUtf8()));
    }

    /// The script, the simulator and the program are of one mind about what is signed.
    void scriptSigns()
    {
        const QString file = writeFile(m_data->filePath("setup 2.exe"), "installer");
        m_key = run(SIGN_UPDATE, {"--public", keyFile("key")}).trimmed();
        m_server->set("/setup 2.exe", sim::UpdateServer::file("installer"));
        sim::HttpReply descriptor;
        descriptor.body =
            "{\"updates\":{\"windows\":{\"latest-version\":\"1.0.1\",\"download-url\":\"" +
            m_server->url("/setup%202.exe").toUtf8() + "\"," +
            run(SIGN_UPDATE, {keyFile("key"), "program", "1.0.1", file}) + "}}}";
        m_server->set(sim::UpdateServer::programPath(), descriptor);
        check();
        QCOMPARE(m_installers.size(), 1);
    }

private:
    /// Makes `server` the update server; it proves to be that to who trusts the certificate.
    void encrypt(ScriptedServer* server)
    {
        const QString key = m_data->filePath("tls-key");
        m_certificate = m_data->filePath("certificate");
        run("openssl",
            {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
             "-days", "2", "-subj", "/CN=update", "-addext", "subjectAltName=IP:" TEST_BLOCK ".1",
             "-keyout", key, "-out", m_certificate});
        server->encrypt(readFile(m_certificate), readFile(key));
        m_url = server->url("https", "").chopped(1);
    }
    void checkTrusting(bool trusting)
    {
        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration tls = before;
        if (trusting)
            tls.addCaCertificates(m_certificate);
        QSslConfiguration::setDefaultConfiguration(tls);
        check();
        QSslConfiguration::setDefaultConfiguration(before);
    }

    QString m_certificate;
    /// A new secret key of that name.
    QString keyFile(const QString& name)
    {
        const QString path = m_data->filePath(name);
        if (!QFile::exists(path))
            run(SIGN_UPDATE, {"--new-key", path});
        return path;
    }
    static QByteArray run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.start(program, arguments);
        process.waitForFinished();
        return process.readAllStandardOutput();
    }
};

QTEST_GUILESS_MAIN(tst_UpdateTrust)
#include "tst_update_trust.moc"
