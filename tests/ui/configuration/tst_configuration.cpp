// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"

#include <QLabel>
#include <QSlider>

/// The configuration area: what a box says, and how it shows.
class tst_Configuration : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void everyValueIsShown_data();
    void everyValueIsShown();
    void oddValues_data();
    void oddValues();
    void badRepliesAreNoValue_data();
    void badRepliesAreNoValue();
    void lateAnswersOfAnotherBoxAreDropped();
    void nothingOfTheBoxBeforeStays();
    void typedStaysUntilSaved();
    void typedIsNotForAnotherBox();
    void nothingOfABoxThatClaimsTheAddress_data();
    void nothingOfABoxThatClaimsTheAddress();
    void boxWithoutMacAddress();

private:
    QString state(const char* name) const
    {
        return child<QWidget>(name)->property("fieldState").toString();
    }
    void comeOnlineAgain()
    {
        readAfter(7, [this] {
            window().R_refreshDeviceIP({ip(8)});
            window().R_refreshDeviceIP({ip(7), ip(8)});
            // Whoever types goes on where he is; nothing is saved that has not been read again.
            QVERIFY(child<QWidget>("eParam_NTPServer")->isEnabled());
            save("尚未读到设备的参数，没有可保存的内容。");
        });
    }

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
    // A test that failed may have left them elsewhere.
    if (m_box->address() != ip(7))
        QVERIFY(m_other->moveTo(ip(8)) && m_box->moveTo(ip(7)));
    m_box->clearFaults();
    select(7, settings());
}

void tst_Configuration::everyValueIsShown_data()
{
    columns<QString>("fault");
    row("at once", "slow 0");
    row("a box that takes its time", "slow 1500");
}

void tst_Configuration::everyValueIsShown()
{
    QFETCH(QString, fault);
    QVERIFY(m_box->addFault(fault));
    select(8);
    select(7);
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
    QCOMPARE(child<QLabel>("config_state")->text(), QString());
    QCOMPARE(information().size(), 6);
    QCOMPARE(window().property("eParam_NDIDecodeList").type(), QVariant::List);
    // A static address counts only without DHCP, and can be typed before.
    const auto* address = child<QWidget>("eParam_IPAddress");
    QVERIFY(!address->property("idle").toBool() && address->toolTip().isEmpty());
    child<QAbstractButton>("DHCP")->click();
    QVERIFY(address->property("idle").toBool() && address->isEnabled());
    QVERIFY(!address->toolTip().isEmpty());
    child<QAbstractButton>("DHCP")->click();
    QVERIFY(!address->property("idle").toBool());
}

void tst_Configuration::oddValues_data()
{
    columns<QString, QString, QString, QString>("parameter", "value", "widget", "shows");
    row("rate cut off", "NDIHXBitRate", "1999", "eParam_NDIHXBitRate", "1");
    row("rate negative", "NDIHXBitRate", "-5", "eParam_NDIHXBitRate", "0");
    row("rate too high", "NDIHXBitRate", "500000", "eParam_NDIHXBitRate", "120");
    row("rate no number", "NDIHXBitRate", "fast", "eParam_NDIHXBitRate", "–");
    row("length too high", "NDIHXGopLength", "99999", "eParam_NDIHXGopLength", "200");
    row("quality unknown", "NDIHXQuality", "5", "quality_3", "off");
    row("quality lowest", "NDIHXQuality", "0", "quality_0", "on");
    row("rate control other", "HXControlRate", "xyz", "CVBR", "on");
    row("profile empty", "HXEncProfile", "", "high", "on");
    row("DHCP other", "DHCP", "yes", "DHCP", "off");
    row("address invalid", "IPAddress", "10.1.2.999", "eParam_IPAddress", "");
    row("address filled with zeros", "IPAddress", "010.001.000.009", "eParam_IPAddress",
        "10.1.0.9");
    row("colour other", "NDIHDR", "2", "SDR", "off");
    row("full bandwidth", "NDIEncMode", "1", "HB", "on");
    row("full bandwidth, HX2 off", "NDIEncMode", "1", "HX2", "off");
    row("mode unknown", "NDIEncMode", "2", "HX2", "off");
    row("format 4", "NDIHXFormat", "4", "HX3", "on");
    row("format odd", "NDIHXFormat", "-3", "H264", "on");
    row("markup", "NDIName", "<b>%1</b>", "eParam_NDIName", "<b>%1</b>");
}

void tst_Configuration::oddValues()
{
    const auto [parameter, value, widget, shows] = cells<QString, QString, QString, QString>();
    select(7, {parameter + "=" + value});
    QCOMPARE(shown(widget), shows);
}

void tst_Configuration::badRepliesAreNoValue_data()
{
    columns<QString, QString, QString>("fault", "name", "known");
    row("silent", "silent", "", "unknown");
    row("array", "array on eParam_NDIName", "", "unknown");
    row("no value", "no-value on eParam_NDIName", "", "missing");
    row("garbage", "garbage", "", "unknown");
    row("not an object", "not-an-object", "", "unknown");
    row("10 MB", "huge 10000000", "", "unknown");
    row("hangs up", "hang-up 50", "", "unknown");
    row("a number instead of text", "number on eParam_NDIName", "42", "read");
    row("nobody knows whose", "garbage on eParam_MACAddress", "", "unknown");
    row("lost once", "garbage on eParam_MACAddress times 2", "42", "read");
}

void tst_Configuration::badRepliesAreNoValue()
{
    QFETCH(QString, fault);
    QVERIFY(m_box->addFault(fault));
    select(7, {"NDIName=42"});
    QTEST(shown("eParam_NDIName"), "name");
    QTEST(state("eParam_NDIName"), "known");
    QTEST(state("caption_0"), "known");
    QCOMPARE(child<QWidget>("eParam_NDIName")->isEnabled(), !shown("eParam_NDIName").isEmpty());
}

void tst_Configuration::lateAnswersOfAnotherBoxAreDropped()
{
    m_other->setParameter("eParam_NDIName", "Too late");
    QVERIFY(m_other->addFault("slow 600 on eParam_NDIName"));
    m_other->clearRequests();
    readAfter(8, [this] {
        clickRow(8);
        QTRY_VERIFY(m_other->requests().size() >= 24);
        clickRow(7);
    });
    QCOMPARE(shown("eParam_NDIName"), QString("Stage Left"));
    // It is remembered for the box it belongs to.
    QCOMPARE(item(8)->property("eParam_NDIName").toString(), QString("Too late"));
}

void tst_Configuration::nothingOfTheBoxBeforeStays()
{
    QVERIFY(m_other->addFault("silent"));
    readAfter(8, [this] {
        clickRow(8);
        for (const char* name :
             {"eParam_NDIName", "quality_3", "eParam_NDIHXBitRate", "eParam_NDIHXBitRateSlider",
              "DHCP", "eParam_IPAddress", "HX2", "H265", "eParam_SDIVolumeSlider"}) {
            QCOMPARE(state(name), QString("unknown"));
            QVERIFY(!child<QWidget>(name)->isEnabled());
        }
    });
    const QStringList empty{shown("eParam_NDIName"), shown("eParam_IPAddress"),
                            shown("eParam_NTPServer"), window().property("UIIP").toString(),
                            window().property("eParam_NDIEncMode").toString()};
    QCOMPARE(empty.join(""), QString());
    for (const char* name : {"quality_3", "main", "CBR", "SDR", "HX2", "H264", "H265"})
        QCOMPARE(shown(name), QString("off"));
    QCOMPARE(shown("eParam_NDIHXGopLength") + shown("eParam_SDIVolume"), QString("––"));
    const QString summary = child<QLabel>("config_state")->text();
    QVERIFY2(summary.endsWith("16 项未读到"), qPrintable(summary));
    // What is wrong is said where one looks, and nothing can be ordered of such a box.
    QTRY_VERIFY(child<QLabel>("config_state")->text().startsWith("端口8081："));
    QVERIFY(child<QWidget>("config_warning")->isVisible());
    for (const char* name : {"save", "pushButton_hxdec_on", "pushButton_live_on", "recode"})
        QVERIFY2(!child<QWidget>(name)->isEnabled(), name);
    QVERIFY(child<QWidget>("save")->toolTip().startsWith("端口8081："));
    m_other->clearFaults();
    readAfter(7, [this] { clickRow(7); });
    QVERIFY(child<QWidget>("save")->isEnabled() && child<QWidget>("recode")->isEnabled());
    QCOMPARE(child<QWidget>("save")->toolTip(), QString("保存 (Ctrl+S)"));
    QVERIFY(!child<QWidget>("config_warning")->isVisible());
}

/// Away for a moment, the box changed by somebody else meanwhile.
void tst_Configuration::typedStaysUntilSaved()
{
    child<Inputui>("eParam_NDIName")->setText("Typed");
    child<QSlider>("eParam_NDIHXBitRateSlider")->setValue(33);
    click("quality_1");
    QCOMPARE(state("eParam_NDIName") + state("caption_5") + state("quality_3"),
             QString("changedchangedchanged"));
    m_box->setParameter("eParam_NDIName", "From elsewhere");
    m_box->setParameter("eParam_NDIHXQuality", "1");
    m_box->setParameter("eParam_NDIHXGopLength", "77");
    // In the midst of its start a box may deny what it has.
    QVERIFY(m_box->addFault("unknown on eParam_NDIName"));
    comeOnlineAgain();
    QCOMPARE(shown("eParam_NDIName"), QString("Typed"));
    m_box->clearFaults();
    comeOnlineAgain();
    QCOMPARE(shown("eParam_NDIName"), QString("Typed"));
    QCOMPARE(shown("eParam_NDIHXBitRate"), QString("33"));
    QCOMPARE(shown("eParam_NDIHXGopLength"), QString("77"));
    // By now the box has what the operator chose.
    QCOMPARE(state("quality_1"), QString("read"));
    QCOMPARE(child<QLabel>("config_state")->text(), QString("2 项未保存"));
    save("设置参数成功.");
    QCOMPARE(m_box->parameter("eParam_NDIName"), QString("Typed"));
    QCOMPARE(child<QLabel>("config_state")->text(), QString());
    child<Inputui>("eParam_NDIName")->setText("Typed again");
    readAfter(8, [this] { clickRow(8); });
    readAfter(7, [this] { clickRow(7); });
    QCOMPARE(shown("eParam_NDIName"), QString("Typed"));
}

void tst_Configuration::typedIsNotForAnotherBox()
{
    child<Inputui>("eParam_NDIName")->setText("Typed");
    const QString mac = m_box->parameter("eParam_MACAddress");
    m_box->setParameter("eParam_MACAddress", "02:00:00:00:00:77");
    // Who answers there is not known before all the rest.
    QVERIFY(m_box->addFault("slow 1500 on eParam_MACAddress"));
    window().R_refreshDeviceIP({ip(8)});
    window().R_refreshDeviceIP({ip(7), ip(8)});
    QCOMPARE(child<QLabel>("config_state")->text(), QString("正在读取… · 1 项未保存"));
    save("尚未读到设备的参数，没有可保存的内容。");
    QCOMPARE(m_box->parameter("eParam_NDIName"), QString("Stage Left"));
    QTRY_COMPARE(shown("eParam_NDIName"), QString("Stage Left"));
    QTRY_COMPARE(child<QLabel>("config_state")->text(), QString());
    m_box->setParameter("eParam_MACAddress", mac);
    m_box->clearFaults();
    clickRow(7);
    QTRY_COMPARE(item(7)->macAddress(), mac);
    QTRY_COMPARE(child<QLabel>("config_state")->text(), QString());
}

void tst_Configuration::nothingOfABoxThatClaimsTheAddress_data()
{
    columns<QString>("fault");
    // Asked for the information list, before the reading and after it.
    row("says who it is once", "garbage on eParam_MACAddress times 2");
    row("never says who it is", "garbage on eParam_MACAddress");
    row("says that it has none", "no-value on eParam_MACAddress");
    row("goes before it says", "slow 1500 on eParam_MACAddress");
}

/// It has the address for as long as the panels are read, and the selected one has it again.
void tst_Configuration::nothingOfABoxThatClaimsTheAddress()
{
    QFETCH(QString, fault);
    m_other->setParameter("eParam_NDIName", "Other");
    m_other->setParameter("eParam_NTPServer", "ntp.other");
    QVERIFY(m_other->addFault(fault));
    QVERIFY(m_box->moveTo(ip(9)) && m_other->moveTo(ip(7)));
    m_other->clearRequests();
    clickRow(7);
    QTRY_VERIFY(m_other->requests().size() >= 24);
    QVERIFY(m_other->moveTo(ip(8)) && m_box->moveTo(ip(7)));
    m_other->clearFaults();
    QTRY_COMPARE(child<QLabel>("config_state")->text(), QString());
    QCOMPARE(shown("eParam_NTPServer"), QString("ntp.example"));
    const QMap<QString, QString> before = m_box->parameters();
    save("设置参数成功.");
    QCOMPARE(m_box->parameters(), before);
    QCOMPARE(item(7)->property("eParam_IPAddress").toString(), before["eParam_IPAddress"]);
}

/// Whoever answers is it.
void tst_Configuration::boxWithoutMacAddress()
{
    QVERIFY(m_box->addFault("no-value on eParam_MACAddress"));
    item(7)->setMacAddress(QString());
    select(8);
    select(7);
    QCOMPARE(shown("eParam_NDIName"), QString("Stage Left"));
    child<Inputui>("eParam_NDIName")->setText("Typed");
    select(7);
    save("设置参数成功.");
    QCOMPARE(m_box->parameter("eParam_NDIName"), QString("Typed"));
}

QTEST_MAIN(tst_Configuration)
#include "tst_configuration.moc"
