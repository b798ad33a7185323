// SPDX-License-Identifier: MIT
#include "tests/ui/configuration/configuration_fixture.h"

/// The configuration area: what a box says, and how it shows.
class tst_Configuration : public ConfigurationFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { StartUp::dress(*qApp); }
    void init() { prepare("127.77.25"); }
    void cleanup() { m_fixture.reset(); }
    void everyValueIsShown();
    void oddValues_data();
    void oddValues();
    void badRepliesChangeNothing_data();
    void badRepliesChangeNothing();
    void lateAnswersOfAnotherBoxAreDropped();
};

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

QTEST_MAIN(tst_Configuration)
#include "tst_configuration.moc"
