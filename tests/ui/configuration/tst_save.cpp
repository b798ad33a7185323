// SPDX-License-Identifier: MIT
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"

#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>

/// Saving the configuration: what is sent, and what it does to the box.
class tst_Save : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<WindowFixture>(); }
    void cleanup() { m_fixture.reset(); }
    void savesInOrderAndAsTyped();
    void appliesWhatChanged_data();
    void appliesWhatChanged();
    void oneRefusalIsNamedOnce();
    void nothingIsSentWithoutAWholeAddress();
    void runKeepsItsBox();
    void boxThatIsOffEndsInTime();
    void boxThatGoesMeanwhileIsNamedOnce();
    void onlyWhatIsKnownIsSent_data();
    void onlyWhatIsKnownIsSent();
    void upgradeThatTakesTheBoxStopsTheRun();
    void changedDhcpReallyReboots();
    void addressThatPassesOnStopsTheRun();
    void closingWaitsForTheWhole();
    void closingSendsTheLastLevel();

private:
    /// A box with known settings, selected in a window of the test's own.
    sim::VirtualBox* selectBox();
    static QStringList told(const sim::VirtualBox* box) { return WindowFixture::told(*box); }

    std::unique_ptr<WindowFixture> m_fixture;
};

sim::VirtualBox* tst_Save::selectBox()
{
    m_fixture->addBox(7);
    m_fixture->openKnowing({7});
    return m_fixture->select(7, WindowFixture::settings());
}

void tst_Save::savesInOrderAndAsTyped()
{
    sim::VirtualBox* box = selectBox();
    const QString name = QString::fromUtf8("a=b \"左\" \\ %1 & it's");
    m_fixture->child<Inputui>("eParam_NDIName")->setText(name);
    m_fixture->child<QSpinBox>("eParam_NDIHXBitRate")->setValue(12);
    m_fixture->click("quality_1");
    m_fixture->save("设置参数成功.");
    const QString sent = QString(name).replace('=', "%3D");
    QCOMPARE(told(box),
             (QStringList{"DHCP=0", "HDMIMode=1", "HXControlRate=CBR", "HXEncProfile=main",
                          "IPAddress=10.1.2.3", "NDIHDR=0", "NDIHXBitRate=12000",
                          "NDIHXGopLength=60", "NDIHXQuality=1", "NDIName=" + sent,
                          "NTPServer=ntp.example", "NetMask=255.255.255.0"}));
    // What the box has made of it is told; what it has been given elsewhere stays as it is.
    QTRY_COMPARE(m_fixture->shown("eParam_NDIName"), QString::fromUtf8("a=b \"左\" \\ \1"));
    const QString given = "Cam A & 50%41=";
    box->setParameter("eParam_NDIName", given);
    m_fixture->select(7);
    QTRY_COMPARE(m_fixture->shown("eParam_NDIName"), given);
    m_fixture->save("设置参数成功.");
    QCOMPARE(box->parameter("eParam_NDIName"), given);
}

void tst_Save::appliesWhatChanged_data()
{
    columns<QString, bool, QString, QStringList, QString>("dhcpBefore", "dhcp", "address",
                                                          "actions", "message");
    row("DHCP on", "0", true, "10.1.2.9", QStringList{"reboot"}, "设置成功,正在重启KORA软件.");
    row("DHCP off", "1", false, "10.1.2.3", QStringList{"reboot"}, "设置成功,正在重启KORA软件.");
    row("static address", "0", false, "10.1.2.9", QStringList{"restart"},
        "设置成功,正在重启KORA设备.");
    row("address under DHCP", "1", true, "10.1.2.9", QStringList(), "设置参数成功.");
}

void tst_Save::appliesWhatChanged()
{
    const auto [dhcpBefore, dhcp, address, actions, message] =
        cells<QString, bool, QString, QStringList, QString>();
    sim::VirtualBox* box = selectBox();
    m_fixture->select(7, {"DHCP=" + dhcpBefore});
    QCOMPARE(m_fixture->shown("DHCP"), QString(dhcpBefore == "1" ? "on" : "off"));
    if ((m_fixture->shown("DHCP") == "on") != dhcp)
        m_fixture->child<QAbstractButton>("DHCP")->click();
    m_fixture->child<IPAddress>("eParam_IPAddress")->setIP(address);
    m_fixture->save(message);
    QTRY_COMPARE(told(box).filter("=").size(), 12);
    QTRY_COMPARE(told(box).mid(12), actions);
}

void tst_Save::oneRefusalIsNamedOnce()
{
    sim::VirtualBox* box = selectBox();
    QVERIFY(box->addFault("fail write+eParam_HDMIMode"));
    QVERIFY(box->addFault("fail write+eParam_NDIName"));
    m_fixture->child<QAbstractButton>("DHCP")->click();
    const DialogAnswerer notices;
    m_fixture->click("save");
    QTRY_COMPARE(notices.texts(), QStringList{"设置参数部分失败,请检查KORA网络状态后重试."});
    // The rest was sent all the same, and nothing was restarted.
    QTest::qWait(300); // for what must not come
    QCOMPARE(told(box).size(), 12);
    QCOMPARE(told(box).filter("=").size(), 12);
    QCOMPARE(notices.texts().size(), 1);
    QCOMPARE(m_fixture->shown("DHCP"), QString("on"));
}

void tst_Save::nothingIsSentWithoutAWholeAddress()
{
    sim::VirtualBox* box = selectBox();
    m_fixture->child<IPAddress>("eParam_NetMask")->findChild<QLineEdit*>("txtIP2")->clear();
    const DialogAnswerer notices;
    m_fixture->click("save");
    QTRY_COMPARE(notices.texts().size(), 1);
    QVERIFY(told(box).isEmpty());
}

void tst_Save::runKeepsItsBox()
{
    sim::VirtualBox* other = m_fixture->addBox(8);
    sim::VirtualBox* box = selectBox();
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(8), 12000);
    QVERIFY(box->addFault("slow 100 on write"));
    other->clearRequests();
    // In the middle of the run the operator selects another box and clicks again.
    bool sawBusy = false;
    QTimer::singleShot(500, this, [&] {
        sawBusy = m_fixture->child<QWidget>("busy_config")->isVisible();
        m_fixture->click("save");
        m_fixture->clickRow(8);
        m_fixture->click("save");
    });
    const DialogAnswerer notices;
    m_fixture->click("save");
    QVERIFY(sawBusy);
    QCOMPARE(notices.texts().size(), 1);
    QCOMPARE(told(box).size(), 12);
    QVERIFY(told(other).isEmpty());
    QVERIFY(!m_fixture->child<QWidget>("busy_config")->isVisible());
    QVERIFY(m_fixture->child<QWidget>("config_body")->isEnabled());
}

void tst_Save::boxThatIsOffEndsInTime()
{
    sim::VirtualBox* box = selectBox();
    QVERIFY(box->addFault("silent"));
    Stopwatch clock;
    const DialogAnswerer notices;
    m_fixture->click("save");
    VERIFY_BELOW(clock.elapsed(), 40000);
    QCOMPARE(notices.texts(), QStringList{"设置参数部分失败,请检查KORA网络状态后重试."});
}

void tst_Save::boxThatGoesMeanwhileIsNamedOnce()
{
    sim::VirtualBox* box = selectBox();
    QVERIFY(box->addFault("slow 100 on write"));
    QTimer::singleShot(450, this, [&] {
        box->unplug();
        // Gone from the list as well.
        m_fixture->deviceView()->treeModel()->remove(m_fixture->item(7));
    });
    m_fixture->save("设置参数部分失败,请检查KORA网络状态后重试.");
    QVERIFY(!told(box).isEmpty());
    QCOMPARE(m_fixture->shown("eParam_NDIName"), QString("Stage Left"));
}

void tst_Save::onlyWhatIsKnownIsSent_data()
{
    columns<QStringList, QString, int, QString>("settings", "fault", "sent", "message");
    row("a box without the parameter", QStringList{}, "no-value on read+eParam_NTPServer", 11,
        "设置参数成功.");
    row("read in vain", QStringList{}, "garbage on read+eParam_NetMask", 11,
        "设置参数成功.\n1 项参数未从设备读到，没有保存。");
    row("nothing read", QStringList{}, "garbage on read", 0, "");
    row("off DHCP to nowhere", QStringList{"DHCP=1"}, "no-value on read+eParam_IPAddress", 0,
        "未读到设备的静态IP地址和子网掩码，不能关闭DHCP。");
    row("no flag", QStringList{"DHCP=yes"}, "slow 0", 11,
        "设置参数成功.\n1 项参数未从设备读到，没有保存。");
    // Between the panel's steps; nobody has touched it.
    row("odd bit rate", QStringList{"NDIHXBitRate=1999"}, "slow 0", 12, "设置参数成功.");
}

void tst_Save::onlyWhatIsKnownIsSent()
{
    const auto [settings, fault, sent, message] = cells<QStringList, QString, int, QString>();
    sim::VirtualBox* box = selectBox();
    QVERIFY(box->addFault(fault));
    m_fixture->select(7, settings);
    const QMap<QString, QString> before = box->parameters();
    if (settings == QStringList{"DHCP=1"})
        m_fixture->child<QAbstractButton>("DHCP")->click();
    QCOMPARE(m_fixture->child<QWidget>("save")->isEnabled(), !message.isEmpty());
    if (message.isEmpty())
        QVERIFY(!m_fixture->child<QWidget>("save")->toolTip().isEmpty());
    else
        m_fixture->save(message);
    QCOMPARE(told(box).size(), sent);
    QCOMPARE(box->parameters(), before);
}

void tst_Save::upgradeThatTakesTheBoxStopsTheRun()
{
    sim::VirtualBox* box = selectBox();
    QVERIFY(box->addFault("slow 100 on write"));
    QTimer::singleShot(450, this, [&] { m_fixture->item(7)->setOwned(true); });
    const DialogAnswerer notices;
    m_fixture->child<QAbstractButton>("DHCP")->click();
    m_fixture->click("save");
    QTRY_COMPARE(notices.texts(), QStringList{"设置参数部分失败,请检查KORA网络状态后重试."});
    QVERIFY2(told(box).size() < 12, qPrintable(told(box).join(' ')));
}

void tst_Save::changedDhcpReallyReboots()
{
    sim::VirtualBox* box = selectBox();
    m_fixture->child<QAbstractButton>("DHCP")->click();
    m_fixture->save("设置成功,正在重启KORA软件.");
    QTRY_COMPARE(box->activity().reboots, 1);
    QTRY_VERIFY_WITH_TIMEOUT(box->isOn(), 10000);
    m_fixture->clickRow(7);
    QTRY_COMPARE(m_fixture->item(7)->property("eParam_DHCP").toString(), QString("1"));
    QCOMPARE(m_fixture->shown("DHCP"), QString("on"));
}

/// And nobody has noticed it.
void tst_Save::addressThatPassesOnStopsTheRun()
{
    m_fixture->addBox(7);
    m_fixture->addBox(8);
    m_fixture->openKnowing({7, 8});
    sim::VirtualBox* box = m_fixture->select(7, WindowFixture::settings());
    sim::VirtualBox* other = m_fixture->lan().find(WindowFixture::ip(8));
    QVERIFY(box->addFault("slow 700 on write"));
    bool hasMoved = false;
    QTimer::singleShot(1000, this, [&] {
        box->unplug();
        hasMoved = other->moveTo(WindowFixture::ip(7));
    });
    const DialogAnswerer notices;
    m_fixture->click("save");
    QTRY_COMPARE(notices.texts(), QStringList{"设置参数部分失败,请检查KORA网络状态后重试.\n"
                                              "此地址上现在是另一台设备。"});
    QVERIFY(hasMoved);
    QCOMPARE(told(other), QStringList());
}

/// The operator clicks the cross twice in the midst of it: the box is told everything, what makes
/// it use that included, and he how it went.
void tst_Save::closingWaitsForTheWhole()
{
    sim::VirtualBox* box = selectBox();
    QVERIFY(box->addFault("slow 100 on write"));
    m_fixture->child<QAbstractButton>("DHCP")->click();
    QStringList waiting;
    for (const int ms : {300, 500})
        QTimer::singleShot(ms, this, [&] {
            QVERIFY(!m_fixture->window().close());
            const auto boxes = m_fixture->window().findChildren<messageBox*>();
            for (const messageBox* shown : boxes)
                waiting << shown->text();
        });
    m_fixture->save("设置成功,正在重启KORA软件.");
    QTRY_VERIFY(m_fixture->window().isHidden());
    QCOMPARE(waiting, (QVector<QString>(2, "正在向KORA发送命令，完成后将自动关闭。").toList()));
    QCOMPARE(told(box).size(), 13);
    QCOMPARE(told(box).last(), QString("reboot"));
}

void tst_Save::closingSendsTheLastLevel()
{
    sim::VirtualBox* box = selectBox();
    auto* slider = m_fixture->child<QSlider>("eParam_SDIVolumeSlider");
    slider->setSliderDown(true);
    slider->setValue(30);
    slider->setSliderDown(false);
    QVERIFY(!m_fixture->window().close());
    QTRY_VERIFY(m_fixture->window().isHidden());
    QCOMPARE(told(box), QStringList("SDIVolume=30"));
}

QTEST_MAIN(tst_Save)
#include "tst_save.moc"
