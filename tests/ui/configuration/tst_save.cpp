// SPDX-License-Identifier: MIT
#include "tests/ui/configuration/configuration_fixture.h"

#include <QElapsedTimer>

/// Saving the configuration: what is sent, and what it does to the box.
class tst_Save : public ConfigurationFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { StartUp::dress(*qApp); }
    void init() { prepare("127.77.53"); }
    void cleanup() { m_fixture.reset(); }
    void savesInOrderAndAsTyped();
    void appliesWhatChanged_data();
    void appliesWhatChanged();
    void oneRefusalIsNamedOnce();
    void nothingIsSentWithoutAWholeAddress();
    void runKeepsItsBox();
    void boxThatIsOffEndsInTime();
    void boxThatGoesMeanwhileIsNamedOnce();
    void changedDhcpReallyReboots();
    void closingMeanwhileIsSafe();
};

void tst_Save::savesInOrderAndAsTyped()
{
    sim::VirtualBox* box = selectBox(7);
    const QString name = QString::fromUtf8("a=b \"左\" \\ %1 & it's");
    m_fixture->child<Inputui>("eParam_NDIName")->setText(name);
    m_fixture->child<QSpinBox>("eParam_NDIHXBitRate")->setValue(12);
    QTest::mouseClick(m_fixture->child<QWidget>("quality_1"), Qt::LeftButton);
    const DialogAnswerer notices;
    clickSave();
    QTRY_COMPARE(notices.texts(), QStringList{"设置参数成功."});
    const QString sent = QString(name).replace('=', "%3D");
    QCOMPARE(
        writes(*box),
        (QStringList{"eParam_DHCP=0", "eParam_HDMIMode=1", "eParam_HXControlRate=CBR",
                     "eParam_HXEncProfile=main", "eParam_IPAddress=10.1.2.3", "eParam_NDIHDR=0",
                     "eParam_NDIHXBitRate=12000", "eParam_NDIHXGopLength=60",
                     "eParam_NDIHXQuality=1", "eParam_NDIName=" + sent,
                     "eParam_NTPServer=ntp.example", "eParam_NetMask=255.255.255.0"}));
    QVERIFY(actions(*box).isEmpty());
}

void tst_Save::appliesWhatChanged_data()
{
    QTest::addColumn<QString>("dhcpBefore");
    QTest::addColumn<bool>("dhcp");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<QString>("message");
    QTest::newRow("DHCP on") << "0" << true << "10.1.2.9" << QStringList{"reboot"}
                             << "设置成功,正在重启KORA软件.";
    QTest::newRow("DHCP off") << "1" << false << "10.1.2.3" << QStringList{"reboot"}
                              << "设置成功,正在重启KORA软件.";
    QTest::newRow("static address")
        << "0" << false << "10.1.2.9" << QStringList{"restart"} << "设置成功,正在重启KORA设备.";
    QTest::newRow("address under DHCP")
        << "1" << true << "10.1.2.9" << QStringList() << "设置参数成功.";
}

void tst_Save::appliesWhatChanged()
{
    QFETCH(QString, dhcpBefore);
    QFETCH(bool, dhcp);
    QFETCH(QString, address);
    QFETCH(QString, message);
    sim::VirtualBox* box = selectBox(7);
    box->setParameter("eParam_DHCP", dhcpBefore);
    m_fixture->clickRow(7);
    QTRY_COMPARE(m_fixture->item(7)->property("eParam_DHCP").toString(), dhcpBefore);
    QTRY_COMPARE(shown("DHCP"), QString(dhcpBefore == "1" ? "on" : "off"));
    QTest::qWait(200);
    if ((shown("DHCP") == "on") != dhcp)
        m_fixture->child<QAbstractButton>("DHCP")->click();
    m_fixture->child<IPAddress>("eParam_IPAddress")->setIP(address);
    box->clearRequests();
    const DialogAnswerer notices;
    clickSave();
    QTRY_COMPARE(notices.texts(), QStringList{message});
    QTRY_COMPARE(writes(*box).size(), 12);
    QTRY_VERIFY([&] {
        QFETCH(QStringList, actions);
        return tst_Save::actions(*box) == actions;
    }());
}

void tst_Save::oneRefusalIsNamedOnce()
{
    sim::VirtualBox* box = selectBox(7);
    QVERIFY(box->addFault("fail write+eParam_HDMIMode"));
    QVERIFY(box->addFault("fail write+eParam_NDIName"));
    m_fixture->child<QAbstractButton>("DHCP")->click();
    const DialogAnswerer notices;
    clickSave();
    QTRY_COMPARE(notices.texts(), QStringList{"设置参数部分失败,请检查KORA网络状态后重试."});
    // The rest was sent all the same, and nothing was restarted.
    QCOMPARE(writes(*box).size(), 12);
    QTest::qWait(300);
    QVERIFY(actions(*box).isEmpty());
    QCOMPARE(notices.texts().size(), 1);
    QCOMPARE(shown("DHCP"), QString("on"));
}

void tst_Save::nothingIsSentWithoutAWholeAddress()
{
    sim::VirtualBox* box = selectBox(7);
    m_fixture->child<IPAddress>("eParam_NetMask")->findChild<QLineEdit*>("txtIP2")->clear();
    const DialogAnswerer notices;
    clickSave();
    QTRY_COMPARE(notices.texts().size(), 1);
    QVERIFY(writes(*box).isEmpty());
}

void tst_Save::runKeepsItsBox()
{
    sim::VirtualBox* other = m_fixture->addBox(8);
    sim::VirtualBox* box = selectBox(7);
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(8), 12000);
    QVERIFY(box->addFault("slow 100 on write"));
    other->clearRequests();
    // In the middle of the run the operator selects another box and clicks again.
    bool sawBusy = false;
    QTimer::singleShot(500, this, [&] {
        sawBusy = m_fixture->child<QWidget>("busy_config")->isVisible();
        clickSave();
        m_fixture->clickRow(8);
        clickSave();
    });
    const DialogAnswerer notices;
    clickSave();
    QVERIFY(sawBusy);
    QCOMPARE(notices.texts().size(), 1);
    QCOMPARE(writes(*box).size(), 12);
    QVERIFY(writes(*other).isEmpty());
    QVERIFY(!m_fixture->child<QWidget>("busy_config")->isVisible());
    QVERIFY(m_fixture->child<QWidget>("config_body")->isEnabled());
}

void tst_Save::boxThatIsOffEndsInTime()
{
    sim::VirtualBox* box = selectBox(7);
    QVERIFY(box->addFault("silent"));
    QElapsedTimer clock;
    clock.start();
    const DialogAnswerer notices;
    clickSave();
    QVERIFY2(clock.elapsed() < 40000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(notices.texts(), QStringList{"设置参数部分失败,请检查KORA网络状态后重试."});
}

void tst_Save::boxThatGoesMeanwhileIsNamedOnce()
{
    sim::VirtualBox* box = selectBox(7);
    QVERIFY(box->addFault("slow 100 on write"));
    QTimer::singleShot(450, this, [&] {
        box->unplug();
        // Gone from the list as well.
        m_fixture->deviceView()->treeModel()->remove(m_fixture->item(7));
    });
    const DialogAnswerer notices;
    clickSave();
    QTRY_COMPARE(notices.texts(), QStringList{"设置参数部分失败,请检查KORA网络状态后重试."});
    QVERIFY(!writes(*box).isEmpty());
    QCOMPARE(shown("eParam_NDIName"), QString("Stage Left"));
}

void tst_Save::changedDhcpReallyReboots()
{
    sim::VirtualBox* box = selectBox(7);
    m_fixture->child<QAbstractButton>("DHCP")->click();
    const DialogAnswerer notices;
    clickSave();
    QTRY_COMPARE(notices.texts(), QStringList{"设置成功,正在重启KORA软件."});
    QTRY_VERIFY(!box->isOn());
    QTRY_VERIFY_WITH_TIMEOUT(box->isOn(), 10000);
    QCOMPARE(box->activity().reboots, 1);
    m_fixture->clickRow(7);
    QTRY_COMPARE(m_fixture->item(7)->property("eParam_DHCP").toString(), QString("1"));
    QCOMPARE(shown("DHCP"), QString("on"));
}

void tst_Save::closingMeanwhileIsSafe()
{
    sim::VirtualBox* box = selectBox(7);
    QVERIFY(box->addFault("slow 200 on write"));
    QTimer::singleShot(500, this, [&] { m_fixture->window().close(); });
    const DialogAnswerer notices;
    QElapsedTimer clock;
    clock.start();
    clickSave();
    QVERIFY2(clock.elapsed() < 1500, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(notices.texts().isEmpty());
    const int sent = writes(*box).size();
    QVERIFY2(sent > 0 && sent < 12, qPrintable(QString::number(sent)));
    m_fixture->close();
}

QTEST_MAIN(tst_Save)
#include "tst_save.moc"
