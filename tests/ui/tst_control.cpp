// SPDX-License-Identifier: MIT
#include "tests/ui/window_fixture.h"

#include "ui/setui.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTableWidget>

#include <functional>

/// The control area: encoder modes, audio levels, decoding and live streaming.
class tst_Control : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void encoderCommands_data();
    void encoderCommands();
    void encoderFailure_data();
    void encoderFailure();
    void dragSendsOnce();
    void onlyDraggingSends();
    void lastDraggedSliderCounts();
    void refusedLevelNamesItsCaption();
    void decodingCommands_data();
    void decodingCommands();
    void sourceListIsKept();
    void hostileSourceAddsNoArgument();
    void decodeFailureIsNamedOnce();
    void nothingChosenKeepsTheDialog();
    void liveCommands_data();
    void liveCommands();
    void liveReplies_data();
    void liveReplies();

private:
    void selectBox();
    /// What the box was told, in order, as "name=value" or "action…".
    QStringList told() const;
    template <class T> T* child(const char* name) const { return m_fixture->child<T>(name); }
    void setState(const QString& mode, const QString& format);
    void click(const char* name) { QTest::mouseClick(child<QWidget>(name), Qt::LeftButton); }
    /// Presses the button that opens a dialog; `act` works in it once it is there.
    void withDialog(const char* button, const std::function<void(setui&)>& act);

    std::unique_ptr<WindowFixture> m_fixture;
    sim::VirtualBox* m_box = nullptr;
};

void tst_Control::initTestCase()
{
    StartUp::dress(*qApp);
    m_fixture = std::make_unique<WindowFixture>("127.77.26");
    m_box = m_fixture->addBox(7);
    m_fixture->open();
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7), 10000);
    QTest::qWait(500);
}

void tst_Control::init()
{
    m_box->clearFaults();
    m_box->setDecodeSources({"STUDIO (Cam 1): 10.0.0.1:5961", "STUDIO (Cam 2): 10.0.0.1:5962"});
    setState("0", "1");
}

void tst_Control::cleanup()
{
    if (QWidget* left = QApplication::activeModalWidget())
        left->close();
}

void tst_Control::setState(const QString& mode, const QString& format)
{
    m_box->setParameter("eParam_NDIEncMode", mode);
    m_box->setParameter("eParam_NDIHXFormat", format);
    m_box->setParameter("eParam_SDIVolume", "10");
    m_box->setParameter("eParam_LineinDelay", "100");
    m_box->clearRequests();
    m_fixture->clickRow(7);
    QTRY_COMPARE(m_box->requests().size(), 24);
    QTest::qWait(100);
    QCOMPARE(m_fixture->window().property("eParam_NDIHXFormat").toString(), format);
    QCOMPARE(child<QSlider>("eParam_SDIVolumeSlider")->value(), 10);
    m_box->clearRequests();
}

QStringList tst_Control::told() const
{
    QStringList list;
    const auto requests = m_box->requests();
    for (const sim::BoxRequest& request : requests) {
        if (request.method == "POST")
            list << QString::fromUtf8(request.body)
                        .replace("action=set&param_name=eParam_", "")
                        .replace("&value=", "=")
                        .replace("action=", "");
    }
    return list;
}

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

void tst_Control::withDialog(const char* button, const std::function<void(setui&)>& act)
{
    bool acted = false;
    QTimer wait;
    connect(&wait, &QTimer::timeout, this, [&] {
        auto* dialog = qobject_cast<setui*>(QApplication::activeModalWidget());
        if (!dialog || acted || !dialog->findChild<QWidget*>("dec_refresh")->isEnabled())
            return;
        acted = true;
        act(*dialog);
    });
    wait.start(150);
    click(button);
    QVERIFY(acted);
}

namespace
{

void press(const setui& dialog, const char* name)
{
    QTest::mouseClick(dialog.findChild<QWidget*>(name), Qt::LeftButton);
}

QTableWidget* sources(const setui& dialog)
{
    return dialog.findChild<QTableWidget*>("Media_tableWidget");
}

QStringList sourceNames(const setui& dialog)
{
    QStringList names;
    for (int row = 0; row < sources(dialog)->rowCount(); ++row)
        names << sources(dialog)->item(row, 0)->text();
    return names;
}

} // namespace

void tst_Control::decodingCommands_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("message");
    const QString on = "hxdec_on&ndi_name='STUDIO (Cam 2)'";
    QTest::newRow("start while encoding")
        << "0"
        << "okpushButton"
        << "hxenc_off|HDMIMode=2|hxenc_on|" + on << "开启解码成功STUDIO (Cam 2)";
    QTest::newRow("start alone") << "2"
                                 << "okpushButton"
                                 << "HDMIMode=2|" + on << "开启解码成功STUDIO (Cam 2)";
    QTest::newRow("stop while encoding") << "1"
                                         << "closepushButton"
                                         << "HDMIMode=1|hxdec_off|hxenc_on"
                                         << "关闭解码成功";
    QTest::newRow("stop alone") << "2"
                                << "closepushButton"
                                << "HDMIMode=1|hxdec_off"
                                << "关闭解码成功";
    QTest::newRow("cancel") << "2"
                            << "cancelpushButton"
                            << ""
                            << "";
}

void tst_Control::decodingCommands()
{
    QFETCH(QString, mode);
    QFETCH(QString, button);
    QFETCH(QString, sent);
    QFETCH(QString, message);
    setState(mode, "1");
    const DialogAnswerer notices;
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        QCOMPARE(sourceNames(dialog), (QStringList{"STUDIO (Cam 1)", "STUDIO (Cam 2)"}));
        sources(dialog)->setCurrentCell(1, 0);
        press(dialog, button.toUtf8().constData());
    });
    QTRY_COMPARE(told().join('|'), sent);
    QTRY_COMPARE(notices.texts().join('|').left(message.size()), message);
    QCOMPARE(notices.texts().size(), message.isEmpty() ? 0 : 1);
}

void tst_Control::sourceListIsKept()
{
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        sources(dialog)->setCurrentCell(1, 0);
        m_box->setDecodeSources({"NEW (A): 10.0.0.1:1", "no address", "STUDIO (Cam 2): 1.2.3.4:5"});
        press(dialog, "dec_refresh");
        QCOMPARE(sourceNames(dialog), (QStringList{"NEW (A)", "no address)", "STUDIO (Cam 2)"}));
        QCOMPARE(sources(dialog)->currentItem()->text(), QString("STUDIO (Cam 2)"));
        // A chosen source that has gone is not silently replaced by another.
        m_box->setDecodeSources({"NEW (A): 10.0.0.1:1"});
        press(dialog, "dec_refresh");
        QVERIFY(!sources(dialog)->currentItem());
        m_box->setDecodeSources({});
        press(dialog, "dec_refresh");
        QVERIFY(dialog.findChild<QWidget*>("no_sources")->isVisible());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    QVERIFY(told().isEmpty());
}

void tst_Control::hostileSourceAddsNoArgument()
{
    const QString name = "-o x\" -o \"/tmp/evil %1 %2 (Cam 'A'";
    m_box->setDecodeSources({name + "): 1.2.3.4:5"});
    setState("2", "1");
    const DialogAnswerer notices;
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        sources(dialog)->setCurrentCell(0, 0);
        QTest::keyClick(sources(dialog), Qt::Key_Return);
    });
    QTRY_COMPARE(told(), (QStringList{"HDMIMode=2", "hxdec_on&ndi_name='" + name + ")'"}));
    QTRY_COMPARE(notices.texts(), QStringList{"开启解码成功" + name + ")"});
}

void tst_Control::decodeFailureIsNamedOnce()
{
    QVERIFY(m_box->addFault("fail hxdec_on"));
    QVERIFY(m_box->addFault("fail hxenc_off"));
    const DialogAnswerer notices;
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        sources(dialog)->setCurrentCell(0, 0);
        press(dialog, "okpushButton");
    });
    QTRY_COMPARE(notices.texts(), QStringList{"开启解码失败STUDIO (Cam 1),请重试!"});
    QCOMPARE(told().size(), 4);
}

void tst_Control::nothingChosenKeepsTheDialog()
{
    const DialogAnswerer notices;
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        sources(dialog)->setCurrentCell(-1, -1);
        press(dialog, "okpushButton");
        QVERIFY(dialog.isVisible());
        dialog.reject();
    });
    withDialog("pushButton_live_on", [&](setui& dialog) {
        press(dialog, "oklive");
        QVERIFY(dialog.isVisible());
        press(dialog, "radioButton_Listener");
        QTest::keyClicks(dialog.findChild<QWidget*>("stream_url"), "cam1");
        QVERIFY(dialog.findChild<QWidget*>("srt_port")->isVisible());
        QVERIFY(!dialog.findChild<QWidget*>("caption_url")->isVisible());
        press(dialog, "oklive");
        QVERIFY(dialog.isVisible());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    QCOMPARE(notices.texts(),
             (QStringList{"请选择您要解码的源", "请输入正确的url", "请输入正确的端口号"}));
    QVERIFY(told().isEmpty());
}

void tst_Control::liveCommands_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("sent");
    QTest::newRow("RTMP with a key") << "radioButton_rtmp"
                                     << "rtmp://h/app?k=v"
                                     << ""
                                     << "stream_on&stream_url='rtmp://h/app?k%3Dv'";
    QTest::newRow("SRT caller, odd text")
        << "radioButton_srt"
        << "srt://h:9?streamid=\"a b\"&%1 左"
        << ""
        << "stream_on&stream_url='srt://h:9?streamid%3D\"a b\"&%1 左'";
    QTest::newRow("SRT listener") << "radioButton_Listener"
                                  << "cam1"
                                  << "9000"
                                  << "stream_on&srt_mode=listener&srt_port=9000&stream_id='cam1'";
    QTest::newRow("stop") << ""
                          << ""
                          << ""
                          << "stream_off";
}

void tst_Control::liveCommands()
{
    QFETCH(QString, mode);
    QFETCH(QString, address);
    QFETCH(QString, port);
    const DialogAnswerer notices;
    withDialog("pushButton_live_on", [&](setui& dialog) {
        if (mode.isEmpty()) {
            press(dialog, "closelive");
            return;
        }
        press(dialog, mode.toUtf8().constData());
        dialog.findChild<QLineEdit*>("stream_url")->setText(address);
        dialog.findChild<QLineEdit*>("srt_port")->setText(port);
        press(dialog, "oklive");
    });
    QTRY_COMPARE(told().size(), 1);
    QTEST(told().first(), "sent");
    QTRY_COMPARE_WITH_TIMEOUT(notices.texts().size(), 1, 15000);
}

void tst_Control::liveReplies_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("message");
    QTest::newRow("started") << ""
                             << "开启直播服务成功http://127.77.26.7:";
    QTest::newRow("refused") << "fail stream_on"
                             << "开启直播服务失败";
}

void tst_Control::liveReplies()
{
    QFETCH(QString, fault);
    QFETCH(QString, message);
    if (!fault.isEmpty())
        QVERIFY(m_box->addFault(fault));
    const DialogAnswerer notices;
    withDialog("pushButton_live_on", [&](setui& dialog) {
        dialog.findChild<QLineEdit*>("stream_url")->setText("rtmp://127.77.26.200/live");
        press(dialog, "oklive");
    });
    QTRY_COMPARE_WITH_TIMEOUT(notices.texts().size(), 1, 15000);
    QVERIFY2(notices.texts().first().startsWith(message), qPrintable(notices.texts().first()));
}

QTEST_MAIN(tst_Control)
#include "tst_control.moc"
