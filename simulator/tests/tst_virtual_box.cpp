// SPDX-License-Identifier: MIT
#include "tests/support/box_client.h"
#include "tests/support/files.h"
#include "tests/support/plugged_box.h"
#include "tests/support/table.h"

#include <QTemporaryDir>

using namespace sim;

namespace
{
const char* const home = TEST_BLOCK ".1";
} // namespace

/// A healthy box, asked by real clients over real sockets.
class tst_VirtualBox : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_box = pluggedBox(home); }
    void cleanup() { m_box.reset(); }

    void writtenValuesStay()
    {
        QCOMPARE(writeParameter(home, "eParam_NDIName", "Main%3DHall + 100%").status(),
                 "set success");
        QCOMPARE(valueOf(home, "eParam_NDIName"), "Main=Hall + 100%");
        QCOMPARE(m_box->parameter("eParam_NDIName"), "Main=Hall + 100%");
        m_box->setParameter("eParam_NDIName", "changed on the box");
        QCOMPARE(valueOf(home, "eParam_NDIName"), "changed on the box");
    }

    void refusedWrites()
    {
        const QString before = m_box->parameter("eParam_NDIHXFormat");
        QVERIFY(writeParameter(home, "eParam_NDIHXFormat", "9").status() != "set success");
        QCOMPARE(m_box->parameter("eParam_NDIHXFormat"), before);
        QVERIFY(writeParameter(home, "eParam_FirmVersion", "9.9").status() != "set success");
        QVERIFY(!readParameter(home, "eParam_Nothing").json().contains("value"));
    }

    void commands_data()
    {
        // "decodes": afterwards
        columns<QString, QString, QString>("body", "status", "decodes");
        row("ndienc_on", "ndienc_on", "success", "");
        row("hxenc_off", "hxenc_off", "success", "");
        row("decode", "hxdec_on&ndi_name='STUDIO (Cam 1)'", "success", "STUDIO (Cam 1)");
        row("decode, name cut by an ampersand", "hxdec_on&ndi_name='A & B'", "success", "A ");
        row("decode nothing", "hxdec_on&ndi_name=''", "failed", "");
        row("stream nowhere", "stream_on", "failed", "");
        row("listener without port", "stream_on&srt_mode=listener&srt_port=&stream_id='a'",
            "failed", "");
        row("stop no recording", "record_off", "failed", "");
        row("record outside", "record_on&file_name=../x.mp4", "failed", "");
        row("unknown", "explode", "failed", "");
    }
    void commands()
    {
        QFETCH(QString, body);
        const CurlResult result = command(home, body);
        QCOMPARE(result.json().value("action").toString(), body.section('&', 0, 0));
        QTEST(result.status(), "status");
        QTEST(m_box->activity().decodeSource, "decodes");
        if (body == "ndienc_on")
            QVERIFY(m_box->activity().fullEncoder);
        else if (body == "hxenc_off")
            QVERIFY(!m_box->activity().compressedEncoder);
    }

    void uploadsGetTheirRealMd5()
    {
        // Sizes around the pieces in which bodies travel.
        for (const int size : {1, 4095, 4096, 4097, 65536, 3000001}) {
            const QString path = firmware("KORA_1.2.0.623.dat", size);
            const CurlResult result = upload(home, path);
            QCOMPARE(result.status(), "success");
            QCOMPARE(result.json().value("file_md5").toString(), md5Of(readFile(path)));
            const BoxRequest logged = m_box->requests().last();
            QCOMPARE(logged.bodySize, qint64(size));
            QCOMPARE(logged.body, QByteArray("KORA_1.2.0.623.dat"));
        }
    }

    void uploadOfSomethingElseFails()
    {
        const QString file = "other=@" + firmware("1.2.dat", 100);
        QCOMPARE(curl({"-F", file, apiUrl(home, "/upload")}).status(), "failed");
        QCOMPARE(curl({"-d", "ota_file=1", apiUrl(home, "/upload")}).status(), "failed");
        QCOMPARE(command(home, "ota").status(), "failed");
    }

    void mediaRanges_data()
    {
        // "answer": status and content
        columns<QString, QString>("range", "answer");
        row("whole", "", "200 0123456789");
        row("middle", "2-4", "206 234");
        row("to the end", "7-", "206 789");
        row("the last", "-2", "206 89");
        row("beyond the end", "10-", "416 ");
    }
    void mediaRanges()
    {
        QFETCH(QString, range);
        m_box->addRecording("a b.mp4", "0123456789");
        QStringList arguments = {"-w", "\n%{http_code}", apiUrl(home, "/media/a%20b.mp4")};
        if (!range.isEmpty())
            arguments << "-r" << range;
        const QList<QByteArray> parts = curl(arguments).output.split('\n');
        QTEST(QString::fromLatin1(parts.last() + ' ' + parts.first()), "answer");
    }

    void strangersAreSentAway()
    {
        const auto code = [](const QStringList& arguments) {
            return curl(QStringList{"-o", "/dev/null", "-w", "%{http_code}"} + arguments).output;
        };
        QCOMPARE(code({apiUrl(home, "/")}), QByteArray("404"));
        QCOMPARE(code({apiUrl(home, "/media/..%2f..%2fetc%2fpasswd")}), QByteArray("404"));
        QCOMPARE(code({"-X", "DELETE", apiUrl(home, "/config")}), QByteArray("404"));
        QCOMPARE(code({apiUrl(home, "/" + QString(9000, 'a'))}), QByteArray("414"));
        QTcpSocket socket;
        socket.connectToHost(home, 8081);
        QVERIFY(socket.waitForConnected());
        socket.write(QByteArray(20000, '\xff') + "\r\n\r\n");
        QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(readParameter(home, "eParam_DHCP").exitCode, 0);
    }

private:
    QString firmware(const QString& name, int size) const
    {
        return writePackage(m_dir.filePath(name), size);
    }

    std::unique_ptr<VirtualBox> m_box;
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_VirtualBox)
#include "tst_virtual_box.moc"
