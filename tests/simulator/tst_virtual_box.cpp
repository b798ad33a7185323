// SPDX-License-Identifier: MIT
#include "tests/support/box_client.h"

#include "simulator/virtual_box.h"
#include "tests/support/table.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

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
    void init();
    void cleanup();
    void everyParameterCanBeRead();
    void writtenValuesStay();
    void refusedWrites();
    void severalReadsAtOnce();
    void lists();
    void commands_data();
    void commands();
    void deletesRecordings();
    void uploadsGetTheirRealMd5();
    void uploadOfSomethingElseFails();
    void mediaRanges_data();
    void mediaRanges();
    void strangersAreSentAway();
    void webModels_data();
    void webModels();
    void requestLog();

private:
    QString firmware(const QString& name, int size);

    std::unique_ptr<VirtualBox> m_box;
    QTemporaryDir m_dir;
};

void tst_VirtualBox::init()
{
    BoxSetup setup;
    setup.address = home;
    m_box = std::make_unique<VirtualBox>(setup);
    QVERIFY2(m_box->plugIn(), qPrintable(m_box->errorString()));
}

void tst_VirtualBox::cleanup()
{
    m_box.reset();
}

QString tst_VirtualBox::firmware(const QString& name, int size)
{
    QFile file(m_dir.filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write a firmware file");
    for (int i = 0; i < size; ++i)
        file.putChar(char(i * 7 + i / 251));
    return file.fileName();
}

void tst_VirtualBox::everyParameterCanBeRead()
{
    const QStringList names = {
        "eParam_DeviceName",   "eParam_FirmVersion",    "eParam_HardVersion",
        "eParam_SdkVersion",   "eParam_DiskSpace",      "eParam_MACAddress",
        "eParam_NDIHXFormat",  "eParam_NDIEncMode",     "eParam_HDMIMode",
        "eParam_NDIHXQuality", "eParam_HXEncProfile",   "eParam_HXControlRate",
        "eParam_NDIHXBitRate", "eParam_NDIHXGopLength", "eParam_NDIHDR",
        "eParam_NDIName",      "eParam_DHCP",           "eParam_IPAddress",
        "eParam_NetMask",      "eParam_NTPServer",      "eParam_SDIVolume",
        "eParam_LineinVolume", "eParam_LineinDelay"};
    QStringList urls;
    for (const QString& name : names)
        urls << apiUrl(home, "/config?action=get&param_name=" + name);
    const CurlResult result = curl(QStringList{"-w", "\n"} + urls);
    const QList<QByteArray> replies = result.output.trimmed().split('\n');
    QCOMPARE(replies.size(), names.size());
    for (int i = 0; i < names.size(); ++i) {
        const QJsonObject reply = QJsonDocument::fromJson(replies[i]).object();
        QCOMPARE(reply.value("param_name").toString(), names[i]);
        QVERIFY2(reply.value("value").isString(), replies[i].constData());
        QVERIFY2(!reply.value("value").toString().isEmpty(), replies[i].constData());
    }
}

void tst_VirtualBox::writtenValuesStay()
{
    QCOMPARE(writeParameter(home, "eParam_NDIName", "Main%3DHall + 100%").status(), "set success");
    QCOMPARE(valueOf(home, "eParam_NDIName"), "Main=Hall + 100%");
    QCOMPARE(m_box->parameter("eParam_NDIName"), "Main=Hall + 100%");
    m_box->setParameter("eParam_NDIName", "changed on the box");
    QCOMPARE(valueOf(home, "eParam_NDIName"), "changed on the box");
}

void tst_VirtualBox::refusedWrites()
{
    const QString before = m_box->parameter("eParam_NDIHXFormat");
    QVERIFY(writeParameter(home, "eParam_NDIHXFormat", "9").status() != "set success");
    QCOMPARE(m_box->parameter("eParam_NDIHXFormat"), before);
    QVERIFY(writeParameter(home, "eParam_FirmVersion", "9.9").status() != "set success");
    QVERIFY(!readParameter(home, "eParam_Nothing").json().contains("value"));
}

void tst_VirtualBox::severalReadsAtOnce()
{
    QNetworkAccessManager manager;
    QVector<QNetworkReply*> replies;
    for (int i = 0; i < 17; ++i) {
        const QUrl url(apiUrl(home, "/config?action=get&param_name=eParam_MACAddress"));
        replies << manager.get(QNetworkRequest(url));
    }
    for (QNetworkReply* reply : replies) {
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(reply->error(), QNetworkReply::NoError);
        const QJsonObject object = QJsonDocument::fromJson(reply->readAll()).object();
        QCOMPARE(object.value("value").toString(), m_box->parameter("eParam_MACAddress"));
    }
}

void tst_VirtualBox::lists()
{
    m_box->setDecodeSources({"STUDIO-PC (Camera 1): 127.77.0.200:5961"});
    m_box->addRecording("old.mp4", "x");
    m_box->addRecording("new.mov", "y");
    const auto list = [](const char* name) {
        return readParameter(home, name).json().value("value").toArray();
    };
    QCOMPARE(list("eParam_RecordList"), QJsonArray({"new.mov", "old.mp4"}));
    QCOMPARE(list("eParam_NDIDecodeList"), QJsonArray({"STUDIO-PC (Camera 1): 127.77.0.200:5961"}));
}

void tst_VirtualBox::commands_data()
{
    // "decodes": afterwards
    columns<QString, QString, QString>("body", "status", "decodes");
    row("ndienc_on", "ndienc_on", "success", "");
    row("hxenc_off", "hxenc_off", "success", "");
    row("decode", "hxdec_on&ndi_name='STUDIO (Cam 1)'", "success", "STUDIO (Cam 1)");
    row("decode, name cut by an ampersand", "hxdec_on&ndi_name='A & B'", "success", "A ");
    row("decode nothing", "hxdec_on&ndi_name=''", "failed", "");
    row("stream nowhere", "stream_on", "failed", "");
    row("listener without port", "stream_on&srt_mode=listener&srt_port=&stream_id='a'", "failed",
        "");
    row("stop no recording", "record_off", "failed", "");
    row("record outside", "record_on&file_name=../x.mp4", "failed", "");
    row("unknown", "explode", "failed", "");
}

void tst_VirtualBox::commands()
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

void tst_VirtualBox::deletesRecordings()
{
    m_box->addRecording("a.mp4", "content");
    QCOMPARE(command(home, "record_del&file_name=b.mp4").status(), "failed");
    QCOMPARE(command(home, "record_del&file_name=a.mp4").status(), "success");
    QVERIFY(m_box->recordings().isEmpty());
    QCOMPARE(curl({"-f", apiUrl(home, "/media/a.mp4")}).exitCode, 22); // 404
}

void tst_VirtualBox::uploadsGetTheirRealMd5()
{
    // Sizes around the pieces in which bodies travel.
    for (const int size : {1, 4095, 4096, 4097, 65536, 3000001}) {
        const QString path = firmware("KORA_1.2.0.623.dat", size);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray md5 =
            QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5).toHex();
        const CurlResult result = upload(home, path);
        QCOMPARE(result.status(), "success");
        QCOMPARE(result.json().value("file_md5").toString().toLatin1(), md5);
        const BoxRequest logged = m_box->requests().last();
        QCOMPARE(logged.bodySize, qint64(size));
        QCOMPARE(logged.body, QByteArray("KORA_1.2.0.623.dat"));
    }
}

void tst_VirtualBox::uploadOfSomethingElseFails()
{
    const QString file = "other=@" + firmware("1.2.dat", 100);
    QCOMPARE(curl({"-F", file, apiUrl(home, "/upload")}).status(), "failed");
    QCOMPARE(curl({"-d", "ota_file=1", apiUrl(home, "/upload")}).status(), "failed");
    QCOMPARE(command(home, "ota").status(), "failed");
}

void tst_VirtualBox::mediaRanges_data()
{
    // "answer": status and content
    columns<QString, QString>("range", "answer");
    row("whole", "", "200 0123456789");
    row("middle", "2-4", "206 234");
    row("to the end", "7-", "206 789");
    row("the last", "-2", "206 89");
    row("beyond the end", "10-", "416 ");
}

void tst_VirtualBox::mediaRanges()
{
    QFETCH(QString, range);
    m_box->addRecording("a b.mp4", "0123456789");
    QStringList arguments = {"-w", "\n%{http_code}", apiUrl(home, "/media/a%20b.mp4")};
    if (!range.isEmpty())
        arguments << "-r" << range;
    const QList<QByteArray> parts = curl(arguments).output.split('\n');
    QTEST(QString::fromLatin1(parts.last() + ' ' + parts.first()), "answer");
}

void tst_VirtualBox::strangersAreSentAway()
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

void tst_VirtualBox::webModels_data()
{
    columns<int, QString>("model", "cell");
    row("orbit", int(BoxModel::Orbit), "<td>ORBIT</td>");
    row("river", int(BoxModel::River), "<td>RIVER</td>");
    row("lantern", int(BoxModel::Lantern), "<td>LANTERN</td>");
}

void tst_VirtualBox::webModels()
{
    QFETCH(int, model);
    QFETCH(QString, cell);
    BoxSetup setup;
    setup.address = TEST_BLOCK ".30";
    setup.model = BoxModel(model);
    setup.webPort = 8880;
    VirtualBox box(setup);
    QVERIFY2(box.plugIn(), qPrintable(box.errorString()));
    const QString root = "http://" TEST_BLOCK ".30:8880";
    const QByteArray page = curl({root + "/cgi-bin/set-dashboard.cgi"}).output;
    QCOMPARE(page.count("<td>ORBIT</td>") + page.count("<td>RIVER</td>") +
                 page.count("<td>LANTERN</td>"),
             1);
    QVERIFY(page.contains(cell.toLatin1()));
    QCOMPARE(curl({"-L", root + "/"}).output, page);
    QVERIFY(isRefused(TEST_BLOCK ".30", 8081));
}

void tst_VirtualBox::requestLog()
{
    QSignalSpy requested(m_box.get(), &VirtualBox::requested);
    readParameter(home, "eParam_DHCP");
    command(home, "hxdec_on&ndi_name='A%3D (B)'");
    const QVector<BoxRequest> log = m_box->requests();
    QCOMPARE(log.size(), 2);
    QCOMPARE(log[0].query, QByteArray("action=get&param_name=eParam_DHCP"));
    QCOMPARE(log[1].method, QByteArray("POST"));
    QCOMPARE(log[1].path, QByteArray("/control"));
    QCOMPARE(log[1].body, QByteArray("action=hxdec_on&ndi_name='A%3D (B)'"));
    QTRY_COMPARE(requested.size(), 2);
    m_box->clearRequests();
    QVERIFY(m_box->requests().isEmpty());
}

QTEST_GUILESS_MAIN(tst_VirtualBox)
#include "tst_virtual_box.moc"
