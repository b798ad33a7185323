// SPDX-License-Identifier: MIT
#include "simulator/faults.h"
#include "simulator/form_body.h"
#include "simulator/kora_api.h"
#include "simulator/parameters.h"
#include "tests/support/table.h"

using namespace sim;

/// What needs no network: reading forms, fault lines and firmware names.
class tst_BoxRules : public QObject
{
    Q_OBJECT

private slots:
    void form_data()
    {
        columns<QByteArray, QString>("body", "value");
        row("plain", QByteArray("value=abc"), "abc");
        row("escaped equals sign", QByteArray("value=a%3Db"), "a=b");
        row("raw equals sign", QByteArray("value=a=b"), "a=b");
        row("plus is no blank", QByteArray("value=a+b c"), "a+b c");
        row("percent without digits", QByteArray("value=100% of %zz %4"), "100% of %zz %4");
        row("signs are no digits", QByteArray("value=%+1%-1% 1"), "%+1%-1% 1");
        row("UTF-8, raw and escaped", QByteArray("value=\xe5\x90\x8d%E5%89%8D"),
            QString::fromUtf8("名前"));
        row("an ampersand ends it", QByteArray("value=a&b"), "a");
        row("empty", QByteArray("value="), "");
        row("missing", QByteArray("x=1&&&=&"), "");
    }
    void form()
    {
        const auto [body, value] = cells<QByteArray, QString>();
        QCOMPARE(parseForm(body).value("value"), value);
    }

    void faultLines_data()
    {
        // "normal": empty: refused
        columns<QString, QString>("line", "normal");
        row("word alone", "silent", "silent");
        row("amount", "slow 250", "slow 250");
        row("target", "fail eParam_NDIName", "fail on eParam_NDIName");
        row("everything", "fail on write+eParam_DHCP times 2 as no such luck",
            "fail on write+eParam_DHCP times 2 as no such luck");
        row("address", "ota-moves 127.77.0.9", "ota-moves as 127.77.0.9");
        row("no address", "ota-moves", "");
        row("version", "ota-falls-back 1.1.0.9 times 1", "ota-falls-back times 1 as 1.1.0.9");
        row("two versions", "ota-falls-back 1.1.0.9 1.1.0.8", "");
        row("names", "ota-resets eParam_DHCP eParam_IPAddress",
            "ota-resets as eParam_DHCP eParam_IPAddress");
        row("unknown word", "sluggish 3", "");
        row("nothing", "  ", "");
        row("too many words", "fail a b", "");
        row("negative amount", "slow on reboot -5 6", "");
        row("no number of times", "fail times many", "");
    }
    void faultLines()
    {
        const auto [line, normal] = cells<QString, QString>();
        QString error;
        const auto fault = parseFault(line, &error);
        QCOMPARE(fault.has_value(), !normal.isEmpty());
        QCOMPARE(error.isEmpty(), fault.has_value());
        if (fault) {
            QCOMPARE(faultLine(*fault), normal);
            QCOMPARE(faultLine(*parseFault(normal)), normal);
        }
    }

    void targetsMustAllFit()
    {
        FaultList faults;
        faults.add(*parseFault("slow on write+eParam_DHCP"));
        QVERIFY(!faults.strike(FaultKind::Slow, {"config", "read", "eParam_DHCP"}));
        QVERIFY(!faults.strike(FaultKind::Slow, {"config", "write", "eParam_NDIName"}));
        QVERIFY(faults.strike(FaultKind::Slow, {"config", "write", "eParam_DHCP"}));
    }

    void firmwareNames()
    {
        QCOMPARE(versionOfFirmwareFile("1.2.0.623.dat"), "1.2.0.623");
        QCOMPARE(versionOfFirmwareFile("KORA_1.2.0.623.dat"), "1.2.0.623");
        QCOMPARE(versionOfFirmwareFile("latest.dat"), "latest");
        QCOMPARE(versionOfFirmwareFile("../../x/2.0.dat"), "2.0");
    }

    void acceptedValues_data()
    {
        columns<QString, QStringList, QStringList>("name", "good", "bad");
        const QStringList noFlags = {"2", "", "yes", "01"};
        row("flag", "eParam_DHCP", QStringList{"0", "1"}, noFlags);
        row("range", "eParam_LineinDelay", QStringList{"0", "341"},
            QStringList{"342", "-1", "3.5", ""});
        row("word", "eParam_HXControlRate", QStringList{"CBR", "VBR", "CVBR"},
            QStringList{"cbr", ""});
        row("address", "eParam_IPAddress", QStringList{"10.0.0.1"},
            QStringList{"10.1", "10.0.0.256", "::1", ""});
        row("text", "eParam_NDIName", QStringList{"", "a=b"}, QStringList{});
        row("read only", "eParam_MACAddress", QStringList{}, QStringList{"00:00"});
        row("unknown", "eParam_Nothing", QStringList{}, QStringList{"1"});
    }
    void acceptedValues()
    {
        const auto [name, good, bad] = cells<QString, QStringList, QStringList>();
        for (const QString& value : good)
            QVERIFY2(isAcceptable(name, value), qPrintable(value));
        for (const QString& value : bad)
            QVERIFY2(!isAcceptable(name, value), qPrintable(value));
    }
};

QTEST_GUILESS_MAIN(tst_BoxRules)
#include "tst_box_rules.moc"
