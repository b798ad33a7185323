// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"

#include <QCheckBox>
#include <QSlider>
#include <QSpinBox>

/// The control area: encoder modes and audio levels.
class tst_Control : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void encoderCommands_data();
    void encoderCommands();
    void codecIsRemembered();
    void encoderFailure_data();
    void encoderFailure();
    void dragSendsOnce();
    void onlyDraggingSends();
    void lastDraggedSliderCounts();
    void refusedLevelNamesItsCaption();
    void ownedBoxIsLeftAlone_data();
    void ownedBoxIsLeftAlone();

private:
    void select(const QString& mode, const QString& format);
    QStringList told() const { return WindowFixture::told(*m_box); }
    static void drag(QSlider* slider, int value)
    {
        slider->setSliderDown(true);
        slider->setValue(value);
        slider->setSliderDown(false);
    }

    sim::VirtualBox* m_box = nullptr;
};

void tst_Control::initTestCase()
{
    m_box = addBox(7);
    openKnowing({7});
}

void tst_Control::init()
{
    m_box->clearFaults();
    select("0", "1");
}

void tst_Control::select(const QString& mode, const QString& format)
{
    WindowFixture::select(
        7, {"NDIEncMode=" + mode, "NDIHXFormat=" + format, "SDIVolume=10", "LineinDelay=100"});
    QCOMPARE(window().property("eParam_NDIHXFormat").toString(), format);
    QCOMPARE(child<QSlider>("eParam_SDIVolumeSlider")->value(), 10);
}

void tst_Control::encoderCommands_data()
{
    // "mode": what the box says before
    columns<QString, QString, QString, QString, QString>("mode", "format", "button", "sent",
                                                         "checked");
    row("HB over HX3", "0", "3", "HB", "hxenc_off HDMIMode=1 NDIEncMode=1 ndienc_on", "HB");
    row("HB from nothing", "2", "1", "HB", "HDMIMode=1 NDIEncMode=1 ndienc_on", "HB");
    row("HB off", "1", "1", "HB", "ndienc_off", "");
    row("HX2 from nothing", "2", "1", "HX2", "NDIHXFormat=1 HDMIMode=1 NDIEncMode=0 hxenc_on",
        "HX2");
    row("HX2 over HB, H.265", "1", "2", "HX2",
        "ndienc_off NDIHXFormat=2 HDMIMode=1 NDIEncMode=0 hxenc_on", "HX2");
    row("HX2 over HX3, H.265", "0", "4", "HX2",
        "hxenc_off NDIHXFormat=2 HDMIMode=1 NDIEncMode=0 hxenc_on", "HX2");
    row("HX3 over HX2", "0", "1", "HX3", "hxenc_off NDIHXFormat=3 HDMIMode=1 NDIEncMode=0 hxenc_on",
        "HX3");
    row("HX3 over HB, H.265", "1", "4", "HX3",
        "ndienc_off NDIHXFormat=4 HDMIMode=1 NDIEncMode=0 hxenc_on", "HX3");
    row("HX3 off", "0", "3", "HX3", "hxenc_off", "");
    row("H.265 in HX2", "0", "1", "H265",
        "hxenc_off NDIHXFormat=2 HDMIMode=1 NDIEncMode=0 hxenc_on", "HX2");
    row("H.264 in HX3", "0", "4", "H264",
        "hxenc_off NDIHXFormat=3 HDMIMode=1 NDIEncMode=0 hxenc_on", "HX3");
    row("H.265 in HB, format 3", "1", "3", "H265", "NDIHXFormat=4", "HB");
    row("H.264 in HB, format 2", "1", "2", "H264", "NDIHXFormat=1", "HB");
    row("H.264 again in HB", "1", "1", "H264", "", "HB");
}

void tst_Control::encoderCommands()
{
    const auto [mode, format, button, sent, checked] =
        cells<QString, QString, QString, QString, QString>();
    select(mode, format);
    const DialogAnswerer notices;
    click(button.toUtf8().constData());
    QTRY_COMPARE(told().join(' '), sent);
    QVERIFY(notices.texts().isEmpty());
    for (const char* name : {"HB", "HX2", "HX3"})
        QCOMPARE(child<QCheckBox>(name)->isChecked(), checked == name);
    QVERIFY(child<QWidget>("control_body")->isEnabled());
}

/// What the box has been told counts, not what it said when it was selected.
void tst_Control::codecIsRemembered()
{
    for (const char* button : {"H265", "HX2", "H264"})
        click(button);
    QTRY_COMPARE(told().last(), QString("NDIHXFormat=1"));
    QCOMPARE(m_box->parameter("eParam_NDIHXFormat"), QString("1"));
}

void tst_Control::encoderFailure_data()
{
    columns<QString, QString, int, QString>("button", "fault", "commands", "message");
    // Before each: HX2 with H.264 runs.
    row("HB, action fails", "HB", "fail ndienc_on", 4, "控制 HB 失败,请重试!");
    row("HB, first fails", "HB", "fail hxenc_off", 4, "控制 HB 失败,请重试!");
    row("HX3, write fails", "HX3", "fail write", 5, "控制 HX3 失败,请重试!");
    row("HX2 off, garbage", "HX2", "garbage on control", 1, "控制 HX2 失败,请重试!");
    row("H.265", "H265", "fail hxenc_on", 5, "控制 H264 失败,请重试!");
    row("HB, box hangs up", "HB", "hang-up 0", 0, "控制 HB 失败,请重试!");
}

void tst_Control::encoderFailure()
{
    const auto [button, fault, commands, message] = cells<QString, QString, int, QString>();
    auto* clicked = child<QAbstractButton>(button.toUtf8().constData());
    const bool before = clicked->isChecked();
    QVERIFY(m_box->addFault(fault));
    const DialogAnswerer notices;
    click(button.toUtf8().constData());
    QTRY_COMPARE(notices.texts(), QStringList{message});
    QCOMPARE(told().size(), commands);
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
    QTest::qWait(600); // longer than a pause in a drag counts
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
    drag(volume, volume->value() == 3 ? 4 : 3);
    QTest::qWait(50);
    drag(child<QSlider>("eParam_LineinDelaySlider"), 55);
    QTRY_COMPARE(told(), QStringList{"LineinDelay=55"});
    QTest::qWait(600);
    QCOMPARE(told().size(), 1);
}

void tst_Control::refusedLevelNamesItsCaption()
{
    QVERIFY(m_box->addFault("fail eParam_SDIVolume"));
    auto* slider = child<QSlider>("eParam_SDIVolumeSlider");
    const DialogAnswerer notices;
    drag(slider, 30);
    QTRY_COMPARE(notices.texts(), QStringList{"控制 SDI音量 (0~32) 失败,请重试!"});
    QCOMPARE(slider->value(), 30);
}

void tst_Control::ownedBoxIsLeftAlone_data()
{
    columns<bool>("whileDragged");
    for (const char* name :
         {"save", "HB", "HX2", "HX3", "H264", "H265", "pushButton_live_on", "pushButton_hxdec_on"})
        row(name, false);
    row("eParam_SDIVolumeSlider", true);
}

/// An upgrade has the box: nothing is sent, it is said, and what was clicked shows what the box
/// has.
void tst_Control::ownedBoxIsLeftAlone()
{
    QFETCH(bool, whileDragged);
    const auto looks = [this] {
        QString all;
        for (const char* name : {"HB", "HX2", "HX3", "H264", "H265", "eParam_SDIVolume"})
            all += shown(name) + ' ';
        return all;
    };
    const QString before = looks();
    const DialogAnswerer notices;
    if (whileDragged) {
        drag(child<QSlider>(QTest::currentDataTag()), 30);
        item(7)->setOwned(true);
    } else {
        item(7)->setOwned(true);
        click(QTest::currentDataTag());
    }
    QTRY_COMPARE(notices.texts(),
                 QStringList{"KORA " + ip(7) + " 正在升级固件或恢复设置，请等待完成后再操作。"});
    item(7)->setOwned(false);
    QCOMPARE(looks(), before);
    QVERIFY2(told().isEmpty(), qPrintable(told().join(' ')));
}

QTEST_MAIN(tst_Control)
#include "tst_control.moc"
