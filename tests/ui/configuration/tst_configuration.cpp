// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"

#include <QSlider>

/// The configuration area: what a box says, and how it shows.
class tst_Configuration : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void everyValueIsShown();
    void oddValues_data();
    void oddValues();
    void badRepliesChangeNothing_data();
    void badRepliesChangeNothing();
    void lateAnswersOfAnotherBoxAreDropped();

private:
    sim::VirtualBox* m_box = nullptr;
    sim::VirtualBox* m_other = nullptr;
};

void tst_Configuration::initTestCase()
{
    m_box = addBox(7);
    m_other = addBox(8);
    openKnowing({7, 8});
}

void tst_Configuration::init()
{
    m_box->clearFaults();
    select(7, settings());
}

void tst_Configuration::everyValueIsShown()
{
    const QStringList expected =
        QString("eParam_NDIName=Stage Left|quality_3=on|main=on|CBR=on|eParam_NDIHXGopLength=60|"
                "eParam_NDIHXBitRate=8|DHCP=off|eParam_IPAddress=10.1.2.3|"
                "eParam_NetMask=255.255.255.0|eParam_NTPServer=ntp.example|SDR=on|HB=off|HX2=on|"
                "HX3=off|H265=on|eParam_SDIVolume=20|eParam_LineinVolume=11|eParam_LineinDelay=341")
            .split('|');
    QStringList seen;
    for (const QString& widget : expected)
        seen << widget.section('=', 0, 0) + "=" + shown(widget.section('=', 0, 0));
    QCOMPARE(seen, expected);
    QCOMPARE(child<QSlider>("eParam_LineinDelaySlider")->value(), 341);
}

void tst_Configuration::oddValues_data()
{
    columns<QString, QString, QString, QString>("parameter", "value", "widget", "shows");
    row("rate cut off", "NDIHXBitRate", "1999", "eParam_NDIHXBitRate", "1");
    row("rate negative", "NDIHXBitRate", "-5", "eParam_NDIHXBitRate", "0");
    row("rate too high", "NDIHXBitRate", "500000", "eParam_NDIHXBitRate", "120");
    row("rate no number", "NDIHXBitRate", "fast", "eParam_NDIHXBitRate", "0");
    row("length too high", "NDIHXGopLength", "99999", "eParam_NDIHXGopLength", "200");
    row("quality unknown", "NDIHXQuality", "5", "quality_3", "on");
    row("quality lowest", "NDIHXQuality", "0", "quality_0", "on");
    row("rate control other", "HXControlRate", "xyz", "CVBR", "on");
    row("profile empty", "HXEncProfile", "", "high", "on");
    row("DHCP other", "DHCP", "yes", "DHCP", "off");
    row("address invalid", "IPAddress", "10.1.2.999", "eParam_IPAddress", "10.1.2.3");
    row("colour other", "NDIHDR", "2", "SDR", "on");
    row("full bandwidth", "NDIEncMode", "1", "HB", "on");
    row("full bandwidth, HX2 off", "NDIEncMode", "1", "HX2", "off");
    row("mode unknown", "NDIEncMode", "2", "HX2", "off");
    row("format 4", "NDIHXFormat", "4", "HX3", "on");
    row("format odd", "NDIHXFormat", "-3", "H264", "on");
    row("markup", "NDIName", "<b>%1</b>", "eParam_NDIName", "<b>%1</b>");
}

void tst_Configuration::oddValues()
{
    QFETCH(QString, parameter);
    QFETCH(QString, value);
    QFETCH(QString, widget);
    QFETCH(QString, shows);
    select(7, {parameter + "=" + value});
    QCOMPARE(shown(widget), shows);
}

void tst_Configuration::badRepliesChangeNothing_data()
{
    columns<QString, QString>("fault", "name");
    row("silent", "silent", "Stage Left");
    row("array", "array on eParam_NDIName", "Stage Left");
    row("no value", "no-value", "Stage Left");
    row("garbage", "garbage", "Stage Left");
    row("not an object", "not-an-object", "Stage Left");
    row("10 MB", "huge 10000000", "Stage Left");
    row("hangs up", "hang-up 50", "Stage Left");
    row("a number instead of text", "number", "42");
}

void tst_Configuration::badRepliesChangeNothing()
{
    QFETCH(QString, fault);
    QFETCH(QString, name);
    QVERIFY(m_box->addFault(fault));
    select(7, {"NDIName=42"});
    QCOMPARE(shown("eParam_NDIName"), name);
}

void tst_Configuration::lateAnswersOfAnotherBoxAreDropped()
{
    m_other->setParameter("eParam_NDIName", "Too late");
    QVERIFY(m_other->addFault("slow 600 on read"));
    readAfter(8, [this] {
        clickRow(8);
        clickRow(7);
    });
    QCOMPARE(shown("eParam_NDIName"), QString("Stage Left"));
    // It is remembered for the box it belongs to.
    QCOMPARE(item(8)->property("eParam_NDIName").toString(), QString("Too late"));
}

QTEST_MAIN(tst_Configuration)
#include "tst_configuration.moc"
