// SPDX-License-Identifier: MIT
#include "tests/ui/control/control_fixture.h"

#include <QCheckBox>
#include <QRadioButton>
#include <QSpinBox>

/// The control area: encoder modes and audio levels.
class tst_Control : public ControlFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { openWindow("127.77.26"); }
    void init() { resetBox(); }
    void cleanup() { closeDialogs(); }
    void encoderCommands_data();
    void encoderCommands();
    void encoderFailure_data();
    void encoderFailure();
    void dragSendsOnce();
    void onlyDraggingSends();
    void lastDraggedSliderCounts();
    void refusedLevelNamesItsCaption();
};

void tst_Control::encoderCommands_data()
{
    QTest::addColumn<QString>("mode"); // what the box says before
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("checked");
    QTest::newRow("HB over HX3") << "0"
                                 << "3"
                                 << "HB"
                                 << "hxenc_off HDMIMode=1 NDIEncMode=1 ndienc_on"
                                 << "HB";
    QTest::newRow("HB from nothing") << "2"
                                     << "1"
                                     << "HB"
                                     << "HDMIMode=1 NDIEncMode=1 ndienc_on"
                                     << "HB";
    QTest::newRow("HB off") << "1"
                            << "1"
                            << "HB"
                            << "ndienc_off"
                            << "";
    QTest::newRow("HX2 from nothing") << "2"
                                      << "1"
                                      << "HX2"
                                      << "NDIHXFormat=1 HDMIMode=1 NDIEncMode=0 hxenc_on"
                                      << "HX2";
    QTest::newRow("HX2 over HB, H.265")
        << "1"
        << "2"
        << "HX2"
        << "ndienc_off NDIHXFormat=2 HDMIMode=1 NDIEncMode=0 hxenc_on"
        << "HX2";
    QTest::newRow("HX2 over HX3, H.265")
        << "0"
        << "4"
        << "HX2"
        << "hxenc_off NDIHXFormat=2 HDMIMode=1 NDIEncMode=0 hxenc_on"
        << "HX2";
    QTest::newRow("HX3 over HX2") << "0"
                                  << "1"
                                  << "HX3"
                                  << "hxenc_off NDIHXFormat=3 HDMIMode=1 NDIEncMode=0 hxenc_on"
                                  << "HX3";
    QTest::newRow("HX3 over HB, H.265")
        << "1"
        << "4"
        << "HX3"
        << "ndienc_off NDIHXFormat=4 HDMIMode=1 NDIEncMode=0 hxenc_on"
        << "HX3";
    QTest::newRow("HX3 off") << "0"
                             << "3"
                             << "HX3"
                             << "hxenc_off"
                             << "";
    QTest::newRow("H.265 in HX2") << "0"
                                  << "1"
                                  << "H265"
                                  << "hxenc_off NDIHXFormat=2 HDMIMode=1 NDIEncMode=0 hxenc_on"
                                  << "HX2";
    QTest::newRow("H.264 in HX3") << "0"
                                  << "4"
                                  << "H264"
                                  << "hxenc_off NDIHXFormat=3 HDMIMode=1 NDIEncMode=0 hxenc_on"
                                  << "HX3";
    QTest::newRow("H.265 in HB, format 3") << "1"
                                           << "3"
                                           << "H265"
                                           << "NDIHXFormat=4"
                                           << "HB";
    QTest::newRow("H.264 in HB, format 2") << "1"
                                           << "2"
                                           << "H264"
                                           << "NDIHXFormat=1"
                                           << "HB";
    QTest::newRow("H.264 again in HB") << "1"
                                       << "1"
                                       << "H264"
                                       << ""
                                       << "HB";
}

void tst_Control::encoderCommands()
{
    QFETCH(QString, mode);
    QFETCH(QString, format);
    QFETCH(QString, button);
    QFETCH(QString, sent);
    QFETCH(QString, checked);
    setState(mode, format);
    const DialogAnswerer notices;
    click(button.toUtf8().constData());
    QTRY_COMPARE(told().join(' '), sent);
    QVERIFY(notices.texts().isEmpty());
    for (const char* name : {"HB", "HX2", "HX3"})
        QCOMPARE(child<QCheckBox>(name)->isChecked(), checked == name);
    QVERIFY(child<QWidget>("control_body")->isEnabled());
}

void tst_Control::encoderFailure_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("commands");
    QTest::addColumn<QString>("message");
    // Before each: HX2 with H.264 runs.
    QTest::newRow("HB, action fails") << "HB"
                                      << "fail ndienc_on" << 4 << "控制 HB 失败,请重试!";
    QTest::newRow("HB, first fails") << "HB"
                                     << "fail hxenc_off" << 4 << "控制 HB 失败,请重试!";
    QTest::newRow("HX3, write fails") << "HX3"
                                      << "fail write" << 5 << "控制 HX3 失败,请重试!";
    QTest::newRow("HX2 off, garbage") << "HX2"
                                      << "garbage" << 1 << "控制 HX2 失败,请重试!";
    QTest::newRow("H.265") << "H265"
                           << "fail hxenc_on" << 5 << "控制 H264 失败,请重试!";
    QTest::newRow("HB, box hangs up") << "HB"
                                      << "hang-up 0" << 4 << "控制 HB 失败,请重试!";
}

void tst_Control::encoderFailure()
{
    QFETCH(QString, button);
    QFETCH(QString, fault);
    QFETCH(QString, message);
    auto* clicked = child<QAbstractButton>(button.toUtf8().constData());
    const bool before = clicked->isChecked();
    QVERIFY(m_box->addFault(fault));
    const DialogAnswerer notices;
    click(button.toUtf8().constData());
    QTRY_COMPARE(notices.texts(), QStringList{message});
    QTEST(told().size(), "commands");
    if (button != "H265")
        QCOMPARE(clicked->isChecked(), before);
    // What was unchecked for the new mode stays so.
    if (button == "HB" || button == "HX3")
        QVERIFY(!child<QCheckBox>("HX2")->isChecked());
}

void tst_Control::dragSendsOnce()
{
    auto* slider = child<QSlider>("eParam_SDIVolumeSlider");
    slider->setSliderDown(true);
    for (int value = 11; value <= 20; ++value) {
        slider->setValue(value);
        QTest::qWait(20);
    }
    QVERIFY(told().isEmpty());
    QTRY_COMPARE(told(), QStringList{"SDIVolume=20"});
    QTest::qWait(600);
    QCOMPARE(told().size(), 1);
    slider->setSliderDown(false);
    QCOMPARE(child<QSpinBox>("eParam_SDIVolume")->value(), 20);
}

void tst_Control::onlyDraggingSends()
{
    child<QSpinBox>("eParam_SDIVolume")->setValue(25);
    auto* slider = child<QSlider>("eParam_SDIVolumeSlider");
    QCOMPARE(slider->value(), 25);
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_Right);
    QTest::qWait(700);
    QVERIFY(told().isEmpty());
}

void tst_Control::lastDraggedSliderCounts()
{
    auto* volume = child<QSlider>("eParam_LineinVolumeSlider");
    auto* delay = child<QSlider>("eParam_LineinDelaySlider");
    volume->setSliderDown(true);
    volume->setValue(volume->value() == 3 ? 4 : 3);
    volume->setSliderDown(false);
    QTest::qWait(50);
    delay->setSliderDown(true);
    delay->setValue(55);
    delay->setSliderDown(false);
    QTRY_COMPARE(told(), QStringList{"LineinDelay=55"});
    QTest::qWait(600);
    QCOMPARE(told().size(), 1);
}

void tst_Control::refusedLevelNamesItsCaption()
{
    QVERIFY(m_box->addFault("fail eParam_SDIVolume"));
    auto* slider = child<QSlider>("eParam_SDIVolumeSlider");
    const DialogAnswerer notices;
    slider->setSliderDown(true);
    slider->setValue(30);
    slider->setSliderDown(false);
    QTRY_COMPARE(notices.texts(), QStringList{"控制 SDI音量 (0~32) 失败,请重试!"});
    QCOMPARE(slider->value(), 30);
}

QTEST_MAIN(tst_Control)
#include "tst_control.moc"
