// SPDX-License-Identifier: MIT
#include "common/limits.h"
#include "tests/support/files.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"
#include "ui/control/setui.h"

#include <QLineEdit>
#include <QTableWidget>
#include <QTimer>

/// The control area: decoding a source and streaming live.
class tst_Streams : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup() { m_notices.reset(); }
    void decodingCommands_data();
    void decodingCommands();
    void sourceListIsKept();
    void hostileSourceAddsNoArgument();
    void slowAndLongListsAreHarmless();
    void decodeFailureIsNamedOnce();
    void nothingChosenKeepsTheDialog();
    void liveCommands_data();
    void liveCommands();

private:
    void select(const QString& mode)
    {
        WindowFixture::select(7, {"NDIEncMode=" + mode, "NDIHXFormat=1"});
    }
    QStringList told() const { return WindowFixture::told(*m_box); }
    /// Presses the button that opens a dialog; `act` works in it once it is there.
    void withDialog(const char* button, const std::function<void(setui&)>& act);

    sim::VirtualBox* m_box = nullptr;
    std::unique_ptr<DialogAnswerer> m_notices;
};

void tst_Streams::initTestCase()
{
    m_box = addBox(7);
    openKnowing({7});
}

void tst_Streams::init()
{
    m_notices = std::make_unique<DialogAnswerer>();
    m_box->clearFaults();
    m_box->setDecodeSources({"STUDIO (Cam 1): 10.0.0.1:5961", "STUDIO (Cam 2): 10.0.0.1:5962"});
    select("0");
}

void tst_Streams::withDialog(const char* button, const std::function<void(setui&)>& act)
{
    m_notices->expect<setui>(
        act, [](setui& dialog) { return dialog.findChild<QWidget*>("dec_refresh")->isEnabled(); });
    click(button);
    QVERIFY(m_notices->isDone());
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

void tst_Streams::decodingCommands_data()
{
    columns<QString, QString, QString, QString>("mode", "button", "sent", "message");
    const QString on = "hxdec_on&ndi_name='STUDIO (Cam 2)'";
    row("start while encoding", "0", "okpushButton", "hxenc_off|HDMIMode=2|hxenc_on|" + on,
        "开启解码成功STUDIO (Cam 2)");
    row("start alone", "2", "okpushButton", "HDMIMode=2|" + on, "开启解码成功STUDIO (Cam 2)");
    row("stop while encoding", "1", "closepushButton", "HDMIMode=1|hxdec_off|hxenc_on",
        "关闭解码成功");
    row("stop alone", "2", "closepushButton", "HDMIMode=1|hxdec_off", "关闭解码成功");
    row("cancel", "2", "cancelpushButton", "", "");
}

void tst_Streams::decodingCommands()
{
    QFETCH(QString, mode);
    QFETCH(QString, button);
    QFETCH(QString, sent);
    QFETCH(QString, message);
    select(mode);
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        QCOMPARE(sourceNames(dialog), (QStringList{"STUDIO (Cam 1)", "STUDIO (Cam 2)"}));
        sources(dialog)->setCurrentCell(1, 0);
        press(dialog, button.toUtf8().constData());
    });
    QTRY_COMPARE(told().join('|'), sent);
    QTRY_COMPARE(m_notices->texts().join('|').left(message.size()), message);
    QCOMPARE(m_notices->texts().size(), message.isEmpty() ? 0 : 1);
}

void tst_Streams::sourceListIsKept()
{
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        sources(dialog)->setCurrentCell(1, 0);
        m_box->setDecodeSources({"NEW (A): 10.0.0.1:1", "no address", "STUDIO (Cam 2): 1.2.3.4:5"});
        press(dialog, "dec_refresh");
        const QStringList names{"NEW (A)", "no address)", "STUDIO (Cam 2)"};
        QTRY_COMPARE(sourceNames(dialog), names);
        QCOMPARE(sources(dialog)->currentItem()->text(), QString("STUDIO (Cam 2)"));
        // A chosen source that has gone is not silently replaced by another.
        m_box->setDecodeSources({"NEW (A): 10.0.0.1:1"});
        press(dialog, "dec_refresh");
        QTRY_VERIFY(!sources(dialog)->currentItem());
        m_box->setDecodeSources({});
        press(dialog, "dec_refresh");
        QTRY_VERIFY(dialog.findChild<QWidget*>("no_sources")->isVisible());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    QVERIFY(told().isEmpty());
}

/// A list that comes a byte a second takes nobody's keyboard away, and five thousand sources are
/// shown in a moment.
void tst_Streams::slowAndLongListsAreHarmless()
{
    QStringList many;
    QString letters; // of many scripts, each of which costs a font
    for (int n = 0; n < 50; ++n)
        letters += QChar(0x600 + n * 7);
    for (int n = 0; n < 5005; ++n)
        many << QString("STUDIO (Camera %1 %2): 1.2.3.4:5").arg(n).arg(letters);
    m_box->setDecodeSources(many);
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        QCOMPARE(sources(dialog)->rowCount(), Limits::ListEntries);
        Stopwatch sinceBeat;
        qint64 longest = 0;
        QTimer beat;
        connect(&beat, &QTimer::timeout, this,
                [&] { longest = qMax(longest, sinceBeat.restart()); });
        beat.start(5);
        press(dialog, "dec_refresh");
        QTRY_VERIFY(dialog.findChild<QWidget*>("dec_refresh")->isEnabled());
        QTest::qWait(50);
        VERIFY_BELOW(longest, 1000);
        QVERIFY(m_box->addFault("throttle 1 on eParam_NDIDecodeList"));
        press(dialog, "dec_refresh");
        QVERIFY(!dialog.findChild<QWidget*>("dec_refresh")->isEnabled());
        QTest::qWait(300);
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
    });
    QVERIFY(linesOf(logFile("limits")).join('\n').contains("entries of a list"));
}

void tst_Streams::hostileSourceAddsNoArgument()
{
    const QString name = "-o x\" -o \"/tmp/evil %1 %2&reboot=1 (Cam 'A'";
    m_box->setDecodeSources({name + "): 1.2.3.4:5"});
    select("2");
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        sources(dialog)->setCurrentCell(0, 0);
        QTest::keyClick(sources(dialog), Qt::Key_Return);
    });
    const QString sent = QString(name).replace("&", "%26");
    QTRY_COMPARE(told(), (QStringList{"HDMIMode=2", "hxdec_on&ndi_name='" + sent + ")'"}));
    QTRY_COMPARE(m_notices->texts(), QStringList{"开启解码成功" + name + ")"});
}

void tst_Streams::decodeFailureIsNamedOnce()
{
    QVERIFY(m_box->addFault("fail hxdec_on"));
    QVERIFY(m_box->addFault("fail hxenc_off"));
    withDialog("pushButton_hxdec_on", [&](setui& dialog) {
        sources(dialog)->setCurrentCell(0, 0);
        press(dialog, "okpushButton");
    });
    QTRY_COMPARE(m_notices->texts(), QStringList{"开启解码失败STUDIO (Cam 1),请重试!"});
    QCOMPARE(told().size(), 4);
}

void tst_Streams::nothingChosenKeepsTheDialog()
{
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
    QCOMPARE(m_notices->texts(),
             (QStringList{"请选择您要解码的源", "请输入正确的url", "请输入正确的端口号"}));
    QVERIFY(told().isEmpty());
}

void tst_Streams::liveCommands_data()
{
    // "port" may be a fault instead, "message" how the answer begins
    columns<QString, QString, QString, QString, QString>("mode", "address", "port", "sent",
                                                         "message");
    const QString started("开启直播服务成功");
    row("RTMP with a key", "radioButton_rtmp", "rtmp://h/app?k=v", "",
        "stream_on&stream_url='rtmp://h/app?k%3Dv'", started + "http://" TEST_BLOCK ".7:");
    row("SRT caller, odd text", "radioButton_srt", "srt://h:9?streamid=\"a b\"&%1 左", "",
        "stream_on&stream_url='srt://h:9?streamid%3D\"a b\"&%1 左'", started);
    row("SRT listener", "radioButton_Listener", "cam1", "9000",
        "stream_on&srt_mode=listener&srt_port=9000&stream_id='cam1'", started);
    row("refused", "radioButton_rtmp", "rtmp://h/live", "fail stream_on",
        "stream_on&stream_url='rtmp://h/live'", "开启直播服务失败");
    row("hung up on", "radioButton_rtmp", "rtmp://h/live", "hang-up 0 on stream_on",
        "stream_on&stream_url='rtmp://h/live'", "设备没有回应，直播服务可能没有开启");
    row("answered as something else", "radioButton_rtmp", "rtmp://h/live",
        "misnamed on stream_on as stream_off", "stream_on&stream_url='rtmp://h/live'",
        "设备没有回应，直播服务可能没有开启");
    row("stop", "", "", "", "stream_off", "关闭直播服务成功");
    row("stop refused", "", "", "fail stream_off", "stream_off", "关闭直播服务失败");
    row("stop unanswered", "", "", "hang-up 0 on stream_off", "stream_off",
        "设备没有回应，直播服务可能没有关闭");
}

void tst_Streams::liveCommands()
{
    QFETCH(QString, mode);
    QFETCH(QString, address);
    QFETCH(QString, port);
    QFETCH(QString, message);
    m_box->addFault(port); // if it is one
    withDialog("pushButton_live_on", [&](setui& dialog) {
        if (mode.isEmpty()) {
            press(dialog, "closelive");
            return;
        }
        QVERIFY2(dialog.windowTitle().contains(TEST_BLOCK ".7"), qPrintable(dialog.windowTitle()));
        press(dialog, mode.toUtf8().constData());
        const QString example = dialog.findChild<QLineEdit*>("stream_url")->placeholderText();
        QVERIFY2(example.contains(address.section(':', 0, 0)), qPrintable(example));
        dialog.findChild<QLineEdit*>("stream_url")->setText(address);
        dialog.findChild<QLineEdit*>("srt_port")->setText(port);
        press(dialog, "oklive");
    });
    QTRY_COMPARE(told().size(), 1);
    QTEST(told().first(), "sent");
    QTRY_COMPARE_WITH_TIMEOUT(m_notices->texts().size(), 1, 15000);
    QVERIFY2(m_notices->texts().first().startsWith(message),
             qPrintable(m_notices->texts().first()));
}

QTEST_MAIN(tst_Streams)
#include "tst_streams.moc"
