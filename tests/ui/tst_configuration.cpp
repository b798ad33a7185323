// SPDX-License-Identifier: MIT
#include "tests/ui/window_fixture.h"

#include "widgets/input_ui.h"
#include "widgets/ip_address.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>

/// The configuration area: what a box says, and what saving sends.
class tst_Configuration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void everyValueIsShown();
    void oddValues_data();
    void oddValues();
    void badRepliesChangeNothing_data();
    void badRepliesChangeNothing();
    void lateAnswersOfAnotherBoxAreDropped();
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

private:
    sim::VirtualBox* selectBox(int host);
    /// "name=value" of each parameter written to the box, in order.
    static QStringList writes(const sim::VirtualBox& box);
    static QStringList actions(const sim::VirtualBox& box);
    QString shown(const QString& widget) const;
    void clickSave();

    std::unique_ptr<WindowFixture> m_fixture;
};

void tst_Configuration::initTestCase()
{
    StartUp::dress(*qApp);
}

void tst_Configuration::init()
{
    m_fixture = std::make_unique<WindowFixture>("127.77.25");
}

void tst_Configuration::cleanup()
{
    m_fixture.reset();
}

sim::VirtualBox* tst_Configuration::selectBox(int host)
{
    sim::VirtualBox* box = m_fixture->lan().find(m_fixture->ip(host));
    if (!box)
        box = m_fixture->addBox(host);
    const QMap<QString, QString> settings{{"eParam_NDIName", "Stage Left"},
                                          {"eParam_NDIHXQuality", "3"},
                                          {"eParam_HXEncProfile", "main"},
                                          {"eParam_HXControlRate", "CBR"},
                                          {"eParam_NDIHXGopLength", "60"},
                                          {"eParam_NDIHXBitRate", "8000"},
                                          {"eParam_DHCP", "0"},
                                          {"eParam_IPAddress", "10.1.2.3"},
                                          {"eParam_NetMask", "255.255.255.0"},
                                          {"eParam_NTPServer", "ntp.example"},
                                          {"eParam_NDIHDR", "0"},
                                          {"eParam_NDIEncMode", "0"},
                                          {"eParam_NDIHXFormat", "2"},
                                          {"eParam_SDIVolume", "20"},
                                          {"eParam_LineinVolume", "11"},
                                          {"eParam_LineinDelay", "341"}};
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        box->setParameter(it.key(), it.value());
    if (!m_fixture->isOpen())
        m_fixture->open();
    [&] { QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(host), 12000); }();
    QTest::qWait(300);
    box->clearRequests();
    m_fixture->clickRow(host);
    [&] { QTRY_VERIFY(box->requests().size() >= 24); }();
    QTest::qWait(200);
    box->clearRequests();
    return box;
}

QStringList tst_Configuration::writes(const sim::VirtualBox& box)
{
    QStringList list;
    const auto requests = box.requests();
    for (const sim::BoxRequest& request : requests) {
        const QString body = QString::fromUtf8(request.body);
        if (request.path == "/config" && request.method == "POST")
            list << body.section("param_name=", 1).replace("&value=", "=");
    }
    return list;
}

QStringList tst_Configuration::actions(const sim::VirtualBox& box)
{
    QStringList list;
    const auto requests = box.requests();
    for (const sim::BoxRequest& request : requests) {
        if (request.path == "/control")
            list << QString::fromUtf8(request.body).section("action=", 1);
    }
    return list;
}

QString tst_Configuration::shown(const QString& widget) const
{
    auto* found = m_fixture->child<QWidget>(widget.toUtf8().constData());
    if (auto* address = qobject_cast<IPAddress*>(found))
        return address->getIP();
    if (auto* input = qobject_cast<Inputui*>(found))
        return input->text();
    if (auto* line = qobject_cast<QLineEdit*>(found))
        return line->text();
    if (auto* spin = qobject_cast<QSpinBox*>(found))
        return QString::number(spin->value());
    if (auto* button = qobject_cast<QAbstractButton*>(found))
        return button->isChecked() ? "on" : "off";
    return QString();
}

void tst_Configuration::clickSave()
{
    QTest::mouseClick(m_fixture->child<QWidget>("save"), Qt::LeftButton);
}

void tst_Configuration::everyValueIsShown()
{
    selectBox(7);
    const QMap<QString, QString> expected{{"eParam_NDIName", "Stage Left"},
                                          {"quality_3", "on"},
                                          {"main", "on"},
                                          {"CBR", "on"},
                                          {"eParam_NDIHXGopLength", "60"},
                                          {"eParam_NDIHXBitRate", "8"},
                                          {"DHCP", "off"},
                                          {"eParam_IPAddress", "10.1.2.3"},
                                          {"eParam_NetMask", "255.255.255.0"},
                                          {"eParam_NTPServer", "ntp.example"},
                                          {"SDR", "on"},
                                          {"HB", "off"},
                                          {"HX2", "on"},
                                          {"HX3", "off"},
                                          {"H265", "on"},
                                          {"eParam_SDIVolume", "20"},
                                          {"eParam_LineinVolume", "11"},
                                          {"eParam_LineinDelay", "341"}};
    for (auto it = expected.cbegin(); it != expected.cend(); ++it)
        QVERIFY2(shown(it.key()) == it.value(), qPrintable(it.key() + ": " + shown(it.key())));
    QCOMPARE(m_fixture->child<QSlider>("eParam_LineinDelaySlider")->value(), 341);
}

void tst_Configuration::oddValues_data()
{
    QTest::addColumn<QString>("parameter");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QString>("shows");
    QTest::newRow("rate cut off") << "eParam_NDIHXBitRate"
                                  << "1999"
                                  << "eParam_NDIHXBitRate"
                                  << "1";
    QTest::newRow("rate negative") << "eParam_NDIHXBitRate"
                                   << "-5"
                                   << "eParam_NDIHXBitRate"
                                   << "0";
    QTest::newRow("rate too high") << "eParam_NDIHXBitRate"
                                   << "500000"
                                   << "eParam_NDIHXBitRate"
                                   << "120";
    QTest::newRow("rate no number") << "eParam_NDIHXBitRate"
                                    << "fast"
                                    << "eParam_NDIHXBitRate"
                                    << "0";
    QTest::newRow("length too high") << "eParam_NDIHXGopLength"
                                     << "99999"
                                     << "eParam_NDIHXGopLength"
                                     << "200";
    QTest::newRow("quality unknown") << "eParam_NDIHXQuality"
                                     << "5"
                                     << "quality_3"
                                     << "on";
    QTest::newRow("quality lowest") << "eParam_NDIHXQuality"
                                    << "0"
                                    << "quality_0"
                                    << "on";
    QTest::newRow("rate control other") << "eParam_HXControlRate"
                                        << "xyz"
                                        << "CVBR"
                                        << "on";
    QTest::newRow("profile empty") << "eParam_HXEncProfile"
                                   << ""
                                   << "high"
                                   << "on";
    QTest::newRow("DHCP other") << "eParam_DHCP"
                                << "yes"
                                << "DHCP"
                                << "off";
    QTest::newRow("address invalid") << "eParam_IPAddress"
                                     << "10.1.2.999"
                                     << "eParam_IPAddress"
                                     << "10.1.2.3";
    QTest::newRow("colour other") << "eParam_NDIHDR"
                                  << "2"
                                  << "SDR"
                                  << "on";
    QTest::newRow("full bandwidth") << "eParam_NDIEncMode"
                                    << "1"
                                    << "HB"
                                    << "on";
    QTest::newRow("full bandwidth, HX2 off") << "eParam_NDIEncMode"
                                             << "1"
                                             << "HX2"
                                             << "off";
    QTest::newRow("mode unknown") << "eParam_NDIEncMode"
                                  << "2"
                                  << "HX2"
                                  << "off";
    QTest::newRow("format 4") << "eParam_NDIHXFormat"
                              << "4"
                              << "HX3"
                              << "on";
    QTest::newRow("format odd") << "eParam_NDIHXFormat"
                                << "-3"
                                << "H264"
                                << "on";
    QTest::newRow("markup") << "eParam_NDIName"
                            << "<b>%1</b>"
                            << "eParam_NDIName"
                            << "<b>%1</b>";
}

void tst_Configuration::oddValues()
{
    QFETCH(QString, parameter);
    QFETCH(QString, value);
    QFETCH(QString, widget);
    QFETCH(QString, shows);
    sim::VirtualBox* box = selectBox(7);
    box->setParameter(parameter, value);
    m_fixture->clickRow(7);
    QTRY_COMPARE(box->requests().size(), 24);
    QTRY_COMPARE(shown(widget), shows);
}

void tst_Configuration::badRepliesChangeNothing_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("name");
    QTest::newRow("silent") << "silent"
                            << "Stage Left";
    QTest::newRow("array") << "array on eParam_NDIName"
                           << "Stage Left";
    QTest::newRow("no value") << "no-value"
                              << "Stage Left";
    QTest::newRow("garbage") << "garbage"
                             << "Stage Left";
    QTest::newRow("not an object") << "not-an-object"
                                   << "Stage Left";
    QTest::newRow("10 MB") << "huge 10000000"
                           << "Stage Left";
    QTest::newRow("hangs up") << "hang-up 50"
                              << "Stage Left";
    QTest::newRow("a number instead of text") << "number"
                                              << "42";
}

void tst_Configuration::badRepliesChangeNothing()
{
    QFETCH(QString, fault);
    QFETCH(QString, name);
    sim::VirtualBox* box = selectBox(7);
    QVERIFY(box->addFault(fault));
    box->setParameter("eParam_NDIName", "42");
    m_fixture->clickRow(7);
    QTest::qWait(2500);
    QCOMPARE(shown("eParam_NDIName"), name);
}

void tst_Configuration::lateAnswersOfAnotherBoxAreDropped()
{
    sim::VirtualBox* slow = m_fixture->addBox(8);
    selectBox(7);
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(8), 12000);
    slow->setParameter("eParam_NDIName", "Too late");
    QVERIFY(slow->addFault("slow 600 on read"));
    m_fixture->clickRow(8);
    m_fixture->clickRow(7);
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(8)->property("eParam_NDIName").isValid(), 5000);
    QTest::qWait(200);
    QCOMPARE(shown("eParam_NDIName"), QString("Stage Left"));
    // It is remembered for the box it belongs to.
    QCOMPARE(m_fixture->item(8)->property("eParam_NDIName").toString(), QString("Too late"));
}

void tst_Configuration::savesInOrderAndAsTyped()
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

void tst_Configuration::appliesWhatChanged_data()
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

void tst_Configuration::appliesWhatChanged()
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
        return tst_Configuration::actions(*box) == actions;
    }());
}

void tst_Configuration::oneRefusalIsNamedOnce()
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

void tst_Configuration::nothingIsSentWithoutAWholeAddress()
{
    sim::VirtualBox* box = selectBox(7);
    m_fixture->child<IPAddress>("eParam_NetMask")->findChild<QLineEdit*>("txtIP2")->clear();
    const DialogAnswerer notices;
    clickSave();
    QTRY_COMPARE(notices.texts().size(), 1);
    QVERIFY(writes(*box).isEmpty());
}

void tst_Configuration::runKeepsItsBox()
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

void tst_Configuration::boxThatIsOffEndsInTime()
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

void tst_Configuration::boxThatGoesMeanwhileIsNamedOnce()
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

void tst_Configuration::changedDhcpReallyReboots()
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

void tst_Configuration::closingMeanwhileIsSafe()
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

QTEST_MAIN(tst_Configuration)
#include "tst_configuration.moc"
