// SPDX-License-Identifier: MIT
#include "tests/support/box_client.h"
#include "tests/support/files.h"
#include "tests/support/plugged_box.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QJsonArray>
#include <QTemporaryDir>

#include <vector>

using namespace sim;

namespace
{

const char* const home = TEST_BLOCK ".1";
constexpr int noAnswer = 52;   // curl: empty reply
constexpr int resetByBox = 56; // curl: failure in receiving
constexpr int sendFailed = 55; // curl

/// What curl brought back, in words.
QString described(const CurlResult& result)
{
    const QJsonDocument document = QJsonDocument::fromJson(result.output);
    const QJsonValue value = result.json().value("value");
    if (result.exitCode == noAnswer || result.exitCode == resetByBox)
        return "no answer";
    if (result.exitCode != 0)
        return result.output.isEmpty() ? "nothing" : QString("broken off: %1").arg(result.exitCode);
    if (result.output.size() >= 5000)
        return QString::number(result.output.size()) + (value.isUndefined() ? "" : " with a value");
    if (!document.isObject())
        return document.isArray() ? "array" : result.output.isEmpty() ? "empty" : "no JSON";
    if (value.isUndefined())
        return result.json().contains("param_name") ? "no value" : "no parameter";
    if (value.isArray())
        return "list of " + value.toArray().first().toString();
    return (value.isDouble() ? "number " : "") + value.toVariant().toString();
}

} // namespace

/// Every fault, seen from the other end of the wire.
class tst_BoxFaults : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_box.reset();
        m_box = pluggedBox(home, 200);
    }

    void replies_data()
    {
        columns<QString, QString, QString>("fault", "name", "reply");
        row("garbage", "garbage", "eParam_DeviceName", "no JSON");
        row("no object", "not-an-object", "eParam_DeviceName", "array");
        row("empty", "empty", "eParam_DeviceName", "empty");
        row("10 MB", "huge", "eParam_DeviceName", "10000000 with a value");
        row("other size", "huge 5000", "eParam_DeviceName", "5000 with a value");
        row("number", "number", "eParam_NDIHXBitRate", "number 9000");
        row("array", "array", "eParam_DHCP", "list of 1");
        row("no value", "no-value", "eParam_DHCP", "no value");
        row("hostile text", "text", "eParam_DeviceName", hostileText());
        row("hostile list", "text as <i>x", "eParam_RecordList", "list of <i>x");
        row("half a reply", "hang-up", "eParam_DeviceName", "broken off: 18");
        row("not a word", "hang-up 0", "eParam_DeviceName", "no answer");
        row("not there", "unknown", "eParam_NDIHDR", "no value");
        row("HTTP error", "http-error 503", "eParam_DeviceName", "no JSON");
    }
    void replies()
    {
        const auto [fault, name] = cells<QString, QString>();
        m_box->setParameter("eParam_NDIHXBitRate", "9000");
        Fault spoiling = parseFault(fault).value();
        spoiling.target = name;
        m_box->addFault(spoiling);
        QTEST(described(readParameter(home, name)), "reply");
        // Others are well, and so is this one when the fault is gone.
        QCOMPARE(valueOf(home, "eParam_MACAddress"), m_box->parameter("eParam_MACAddress"));
        m_box->clearFaults();
        QCOMPARE(readParameter(home, name).json().value("param_name").toString(), name);
        QVERIFY(readParameter(home, name).json().contains("value"));
    }

    void failuresHaveTargets_data()
    {
        // "write": status of writing eParam_SDIVolume; "other": of eParam_LineinVolume; "command":
        // of ndienc_on
        columns<QString, QString, QString, QString>("fault", "write", "other", "command");
        row("one parameter", "fail eParam_SDIVolume", "set failed", "set success", "success");
        row("all writes", "fail write", "set failed", "set failed", "success");
        row("one action", "fail ndienc_on", "set success", "set success", "failed");
        row("everything", "fail", "set failed", "set failed", "failed");
        row("words of its own", "fail ndienc_on as busy", "set success", "set success", "busy");
        row("once", "fail times 1", "set failed", "set success", "success");
    }
    void failuresHaveTargets()
    {
        const auto [fault, write] = cells<QString, QString>();
        m_box->setParameter("eParam_SDIVolume", "1");
        QVERIFY(m_box->addFault(fault));
        QTEST(writeParameter(home, "eParam_SDIVolume", "2").status(), "write");
        QTEST(writeParameter(home, "eParam_LineinVolume", "2").status(), "other");
        QTEST(command(home, "ndienc_on").status(), "command");
        QCOMPARE(m_box->parameter("eParam_SDIVolume"), write == "set success" ? "2" : "1");
    }

    void slowBoxAnswersLate()
    {
        QVERIFY(m_box->addFault("slow 300 on eParam_DHCP"));
        const CurlResult slow = readParameter(home, "eParam_DHCP");
        QCOMPARE(slow.exitCode, 0);
        QVERIFY2(slow.ms >= 300, qPrintable(QString::number(slow.ms)));
        QVERIFY(readParameter(home, "eParam_NetMask").ms < 300);
    }

    void silentBoxHoldsNobodyElseUp()
    {
        QVERIFY(m_box->addFault("silent on eParam_DHCP"));
        std::vector<std::unique_ptr<QTcpSocket>> waiting;
        for (int i = 0; i < 100; ++i) {
            waiting.push_back(std::make_unique<QTcpSocket>());
            waiting.back()->connectToHost(home, 8081);
            waiting.back()->write(
                "GET /config?action=get&param_name=eParam_DHCP HTTP/1.1\r\nHost: x\r\n\r\n");
        }
        QTRY_COMPARE(m_box->requests().size(), 100);
        VirtualBox other(TEST_BLOCK ".2");
        QVERIFY(other.plugIn());
        for (const char* address : {home, TEST_BLOCK ".2"}) {
            const CurlResult quick = readParameter(address, "eParam_NetMask");
            QCOMPARE(quick.exitCode, 0);
            VERIFY_BELOW(quick.ms, 1000);
        }
        for (const auto& socket : waiting) {
            QCOMPARE(socket->bytesAvailable(), 0);
            QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);
        }
    }

    void portsAndPing()
    {
        QVERIFY(m_box->addFault("refuse"));
        for (const quint16 port : {8081, 8001, 8002})
            QVERIFY(isRefused(home, port));
        QVERIFY(m_box->isReachable());
        m_box->clearFault(FaultKind::Refuse);
        QVERIFY(m_box->addFault("no-ping"));
        QVERIFY(!m_box->isReachable());
        QCOMPARE(readParameter(home, "eParam_DHCP").exitCode, 0);
        m_box->clearFaults();
        QVERIFY(m_box->isReachable());
    }

    void uploadIsCut()
    {
        QVERIFY(m_box->addFault("cut-upload 60"));
        const CurlResult cut = upload(home, firmware(20 * 1000 * 1000));
        QVERIFY2(cut.exitCode == sendFailed || cut.exitCode == resetByBox ||
                     cut.exitCode == noAnswer,
                 qPrintable(QString::number(cut.exitCode)));
        QCOMPARE(cut.output, QByteArray());
        QVERIFY(m_box->requests().isEmpty()); // it was no whole request
        m_box->clearFaults();
        QCOMPARE(upload(home, firmware(1000)).status(), "success");
    }

    void throttledDownload()
    {
        m_box->addRecording("a.mp4", QByteArray(50000, 'a'));
        QVERIFY(m_box->addFault("throttle 100000 on media"));
        const CurlResult slow = curl({apiUrl(home, "/media/a.mp4")});
        QCOMPARE(slow.output.size(), 50000);
        QVERIFY2(slow.ms >= 450 && slow.ms < 2000, qPrintable(QString::number(slow.ms)));
    }

    void ordersDoneButNotAnswered()
    {
        QVERIFY(m_box->addFault("late 300 on eParam_SDIVolume"));
        QVERIFY(m_box->addFault("unanswered on ota"));
        const CurlResult late = writeParameter(home, "eParam_SDIVolume", "9");
        QCOMPARE(late.status(), "set success");
        QVERIFY2(late.ms >= 300, qPrintable(QString::number(late.ms)));
        QCOMPARE(upload(home, firmware(1000)).status(), "success");
        QVERIFY(command(home, "ota").exitCode != 0);
        QTRY_COMPARE(valueOf(home, "eParam_FirmVersion"), "3.0.0.1");
    }

    void slowChangeOver()
    {
        const QString before = m_box->parameter("eParam_FirmVersion");
        QVERIFY(m_box->addFault("ota-slow 1500 times 2"));
        for (const char* order : {"reboot", "hxdec_off"}) { // the first ends it, the other does not
            QCOMPARE(upload(home, firmware(1000)).status(), "success");
            QCOMPARE(command(home, "ota").status(), "success");
            QTRY_VERIFY(m_box->activity().changingFirmware);
            QCOMPARE(valueOf(home, "eParam_FirmVersion"), before);
            QCOMPARE(command(home, order).status(), "success");
            QTRY_VERIFY(!m_box->isReachable());
            QTRY_VERIFY(m_box->isOn());
            QVERIFY(!m_box->activity().changingFirmware);
            QCOMPARE(valueOf(home, "eParam_FirmVersion") == before, QString("reboot") == order);
        }
        QCOMPARE(m_box->activity().brokenChanges, 1);
    }

    void otaFaults_data()
    {
        // "address": where it comes back, empty: nowhere
        columns<QString, QString, QString, bool>("fault", "address", "version", "keepsSettings");
        row("none", "", home, "3.0.0.1", true);
        row("stays away", "ota-stays-away", "", "3.0.0.1", true);
        row("old version", "ota-old-version", home, "1.2.0.517", true);
        row("falls back", "ota-falls-back 1.1.0.9", home, "1.1.0.9", true);
        row("loses settings", "ota-loses-settings", home, "3.0.0.1", false);
        row("resets one", "ota-resets eParam_DHCP eParam_NTPServer", home, "3.0.0.1", false);
        row("resets another", "ota-resets eParam_DHCP", home, "3.0.0.1", true);
        row("moves", "ota-moves " TEST_BLOCK ".9", TEST_BLOCK ".9", "3.0.0.1", true);
    }
    void otaFaults()
    {
        const auto [fault, address, version, keepsSettings] =
            cells<QString, QString, QString, bool>();
        QVERIFY(fault.isEmpty() || m_box->addFault(fault));
        const QString mac = m_box->parameter("eParam_MACAddress");
        runOta();
        if (address.isEmpty()) {
            QTest::qWait(400); // twice as long as a reboot takes
            QVERIFY(!m_box->isReachable());
            return;
        }
        QTRY_VERIFY(m_box->isOn());
        QCOMPARE(valueOf(address, "eParam_FirmVersion"), version);
        QCOMPARE(valueOf(address, "eParam_NTPServer") == "time.example", keepsSettings);
        QCOMPARE(valueOf(address, "eParam_MACAddress"), mac);
    }

private:
    QString firmware(int size) const
    {
        return writePackage(m_dir.filePath("KORA_3.0.0.1.dat"), size);
    }

    void runOta()
    {
        QCOMPARE(writeParameter(home, "eParam_NTPServer", "time.example").status(), "set success");
        QCOMPARE(upload(home, firmware(1000)).status(), "success");
        QCOMPARE(command(home, "ota").status(), "success");
        QTRY_VERIFY(!m_box->isReachable());
    }

    std::unique_ptr<VirtualBox> m_box;
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_BoxFaults)
#include "tst_box_faults.moc"
