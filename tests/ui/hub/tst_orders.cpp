// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"
#include "ui/control/setui.h"
#include "ui/recordings/list_widget.h"

#include <QSlider>

/// Who is at an address by now gets none of the orders that were meant for another box.
class tst_Orders : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_fixture.reset(); }
    void anotherBoxIsToldNothing_data();
    void anotherBoxIsToldNothing();
    void refusedRestartIsTold();
    void boxThatHidIsAskedForAgain();
    void whatHappensMeanwhileCounts_data();
    void whatHappensMeanwhileCounts();

private:
    /// What the operator does: "what", or "page/button in its dialog".
    void act(const QString& what, DialogAnswerer& answers);
    /// The address of box 7 passes on to box 8, and nobody notices.
    void passOn();

    sim::VirtualBox* m_box = nullptr;
    sim::VirtualBox* m_other = nullptr;
    std::unique_ptr<WindowFixture> m_fixture;
};

void tst_Orders::init()
{
    m_fixture = std::make_unique<WindowFixture>();
    m_box = m_fixture->addBox(7);
    m_other = m_fixture->addBox(8);
    m_box->addRecording("show.mp4");
    m_other->addRecording("show.mp4");
}

void tst_Orders::passOn()
{
    m_box->unplug();
    QVERIFY(m_other->moveTo(m_fixture->ip(7)));
    m_other->clearRequests();
}

void tst_Orders::act(const QString& what, DialogAnswerer& answers)
{
    const QByteArray button = what.section('/', 0, 0).toUtf8();
    if (what.contains('/'))
        answers.expect<setui>([what](setui& dialog) {
            dialog.findChild<QAbstractButton*>(what.section('/', 1))->click();
        });
    if (what == "restart") {
        m_fixture->clickRow(7, 26 - 8);
    } else if (what == "delete") {
        auto* list = m_fixture->child<ListWidget>("storageWidget");
        list->item(0)->setSelected(true);
        QTest::keyClick(list, Qt::Key_Delete);
    } else if (auto* slider = m_fixture->window().findChild<QSlider*>(what)) {
        slider->setSliderDown(true);
        slider->setValue(30);
        slider->setSliderDown(false);
    } else {
        m_fixture->click(button);
    }
}

void tst_Orders::anotherBoxIsToldNothing_data()
{
    columns<QString>("text");
    row("save", "设置参数部分失败,请检查KORA网络状态后重试.");
    row("restart", "KORA " TEST_BLOCK ".7 未重启，请检查KORA网络状态后重试。");
    row("HB", "控制 HB 失败,请重试!");
    row("H264", "控制 H264 失败,请重试!");
    row("eParam_SDIVolumeSlider", "控制 SDI音量 (0~32) 失败,请重试!");
    row("pushButton_hxdec_on/closepushButton", "关闭解码失败,请重试!");
    row("pushButton_live_on/closelive", "关闭直播服务失败");
    row("recode", "开启录制失败，请重试。");
    row("delete", "文件[show.mp4]删除错误,请重试");
}

void tst_Orders::anotherBoxIsToldNothing()
{
    QFETCH(QString, text);
    m_fixture->openKnowing({7, 8});
    m_fixture->select(7, WindowFixture::settings());
    m_other->setParameter("eParam_NDIName", "Other");
    passOn();
    {
        DialogAnswerer answers;
        act(QTest::currentDataTag(), answers);
        const QString why = QTest::currentDataTag() == QString("delete")
                                ? QString()
                                : "\n此地址上现在是另一台设备。";
        QTRY_COMPARE(answers.texts().value(answers.texts().size() - 1), text + why);
        QTest::qWait(300); // for what must not come
    }
    QCOMPARE(WindowFixture::told(*m_other) + WindowFixture::told(*m_box), QStringList());
    // The operator sees whom he has before him.
    QTRY_COMPARE(m_fixture->shown("eParam_NDIName"), QString("Other"));
    QCOMPARE(m_fixture->item(7)->macAddress(), m_other->parameter("eParam_MACAddress"));
    // Whatever he orders now is meant for it.
    if (QTest::currentDataTag() == QByteArray("recode"))
        QTRY_VERIFY(!m_fixture->child<QAbstractButton>("recode")->isChecked());
    m_fixture->save("设置参数成功.");
}

void tst_Orders::refusedRestartIsTold()
{
    m_fixture->openKnowing({7});
    QVERIFY(m_box->addFault("fail reboot"));
    DialogAnswerer answers;
    act("restart", answers);
    QTRY_COMPARE(answers.texts().value(1),
                 QString("KORA " TEST_BLOCK ".7 未重启，请检查KORA网络状态后重试。"));
}

/// And from then on it is that one, for the panels as well. One lost answer changes nothing.
void tst_Orders::boxThatHidIsAskedForAgain()
{
    QVERIFY(m_box->addFault("unknown on eParam_MACAddress"));
    m_fixture->openWith({7, 8});
    m_fixture->select(7, WindowFixture::settings());
    QCOMPARE(m_fixture->item(7)->macAddress(), QString());
    m_box->clearFaults();
    // It may be another one by now.
    m_fixture->save("设置参数部分失败,请检查KORA网络状态后重试.\n"
                    "此地址上的设备现在才告知MAC地址，请确认后重试。");
    QCOMPARE(WindowFixture::told(*m_box), QStringList());
    QTRY_VERIFY(m_fixture->child<QLabel>("config_state")->text().isEmpty());
    m_fixture->save("设置参数成功.");
    QCOMPARE(m_fixture->item(7)->macAddress(), m_box->parameter("eParam_MACAddress"));
    passOn();
    // The row has been corrected by somebody; the panels are still the other box's.
    m_fixture->item(7)->setMacAddress(m_other->parameter("eParam_MACAddress"));
    m_fixture->save("设置参数部分失败,请检查KORA网络状态后重试.\n此地址上现在是另一台设备。");
    QCOMPARE(WindowFixture::told(*m_other), QStringList());
}

void tst_Orders::whatHappensMeanwhileCounts_data()
{
    columns<QString, QString>("order", "meanwhile");
    row("mode of a box that an upgrade takes", "HB", "owned");
    row("recording on a box that leaves the list", "recode", "gone");
    row("restart of a box that an upgrade takes", "restart", "owned");
    row("restart and end", "restart", "closed");
}

/// While the box has not said who it is.
void tst_Orders::whatHappensMeanwhileCounts()
{
    const auto [order, meanwhile] = cells<QString, QString>();
    m_fixture->openKnowing({7});
    m_fixture->select(7, WindowFixture::settings());
    QVERIFY(m_box->addFault("slow 900 on read+eParam_MACAddress"));
    QTimer::singleShot(600, this, [this, meanwhile = meanwhile] {
        if (meanwhile == "owned")
            m_fixture->item(7)->setOwned(true);
        else if (meanwhile == "gone")
            m_fixture->deviceView()->treeModel()->remove(m_fixture->item(7));
        else
            m_fixture->window().hide();
    });
    DialogAnswerer answers;
    act(order, answers);
    const int asked = order == "restart" ? 1 : 0;
    QTRY_COMPARE(answers.texts().size(), asked + (meanwhile == "closed" ? 0 : 1));
    QTRY_COMPARE(m_box->requests().size(), 1);
    QTest::qWait(600); // for what must not come
    QCOMPARE(WindowFixture::told(*m_box), QStringList());
}

QTEST_MAIN(tst_Orders)
#include "tst_orders.moc"
