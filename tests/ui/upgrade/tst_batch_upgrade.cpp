// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "tests/ui/upgrade/upgrade_fixture.h"

#include <QAccessible>
#include <QDebug>
#include <QLabel>
#include <QProcess>
#include <QProgressBar>

#include <csignal>

/// Starting, joining and ending a batch, and what survives the end of the program.
class tst_BatchUpgrade : public QObject, UpgradeFixture
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { end(); }
    void refusals_data();
    void refusals();
    void unreadablePackageStartsNothing();
    void allSucceed();
    void secondBatchJoins();
    void packageDialogSpeaksOfFirmware();
    void md5ToolShowsTheDigest();
    void noMacNamesAProperty();
    void secondFailedWriteBackIsFinal();
    void survivesBeingKilled();
};

void tst_BatchUpgrade::refusals_data()
{
    columns<bool, QStringList, QString>("selected", "files", "text");
    row("nothing selected", false, QStringList{"/tmp/a.dat"},
        "请您在设备列表中选择要升级固件的设备!");
    row("two files", true, QStringList{"/tmp/a.dat", "/tmp/b.dat"},
        "请您拖拽一个固件包文件到此处!");
    row("no file", true, QStringList{}, "请您拖拽一个固件包文件到此处!");
    row("capitals", true, QStringList{"/tmp/fw.DAT"}, "请您拖拽一个有效的固件升级包到此处");
    row("cancelled", true, QStringList{"/tmp/fw.dat"}, question(1));
}

void tst_BatchUpgrade::refusals()
{
    const auto [selected, files, text] = cells<bool, QStringList, QString>();
    addBoxes(1);
    if (selected)
        select({1});
    m_boxes[1]->clearRequests();
    const DialogAnswerer answers("cancelpushButton");
    drop(files);
    QTRY_COMPARE(answers.texts(), QStringList{text});
    QTest::qWait(200); // for what must not come
    QVERIFY(!m_fixture->item(1)->isUpgrading());
    QVERIFY(!m_fixture->deviceView()->isUpgradeTickRunning());
    QCOMPARE(told(1), QStringList());
}

void tst_BatchUpgrade::unreadablePackageStartsNothing()
{
    addBoxes(2);
    select({1, 2});
    const DialogAnswerer answers("okpushButton");
    drop({"/nowhere/fw.dat"});
    QTRY_COMPARE(answers.texts(), (QStringList{question(2), "文件打开失败! "}));
    QVERIFY(!m_fixture->item(1)->property("upgrading").toBool());
    QVERIFY(!m_fixture->deviceView()->isUpgradeTickRunning());
    QVERIFY(m_fixture->window().close());
}

void tst_BatchUpgrade::allSucceed()
{
    addBoxes(2);
    m_fixture->window().setProperty("otaFilepath", m_package);
    select({1, 2});
    const DialogAnswerer answers("okpushButton");
    // As a click on the new-firmware mark does it.
    m_fixture->window().R_ActionClicked(Action::NewFirmware, m_fixture->item(1));
    QTRY_COMPARE_WITH_TIMEOUT(
        answers.texts(),
        (QStringList{question(2), "全部升级完成,KORA即将重启完成固件升级.成功[2]个"}), 15000);
    // Nobody asked for the settings to be kept.
    QVERIFY(m_fixture->window().property("needrestore").toStringList().isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(newestCsv(*m_fixture).count("\"已证实\""), 2, 15000);
    QCOMPARE(newestCsv(*m_fixture).count("\"未保留\""), 2);
    // Nothing is open any more, so nothing is kept for the next start.
    QTRY_VERIFY(QDir(m_fixture->dataFolder() + "batches").entryList({"*.json"}).isEmpty());
}

void tst_BatchUpgrade::secondBatchJoins()
{
    addBoxes(3);
    for (sim::VirtualBox* box : qAsConst(m_boxes))
        QVERIFY(box->addFault("throttle 50000 on upload"));
    auto* bar = m_fixture->child<QProgressBar>("upgrade_progress");
    const DialogAnswerer answers("okpushButton");
    select({1, 2});
    drop({m_package});
    QTRY_VERIFY(m_fixture->deviceView()->isUpgradeTickRunning());
    QCOMPARE(bar->maximum(), 600);
    QVERIFY(bar->value() >= 30 && bar->value() < 60);
    // Curl tells about once a second how far it is.
    QTRY_VERIFY(m_fixture->item(1)->activity().startsWith("上传 "));
    // Those under way are not taken again.
    select({1, 2, 3});
    drop({m_package});
    QTRY_COMPARE(bar->maximum(), 1200);
    auto* status = m_fixture->child<QLabel>("upgrade_status");
    QTRY_VERIFY2(status->text().contains("共[3]个"), qPrintable(status->text()));
    QTRY_COMPARE_WITH_TIMEOUT(
        answers.texts(),
        (QStringList{question(2), question(1), "全部升级完成,KORA即将重启完成固件升级.成功[3]个"}),
        20000);
    for (int host = 1; host <= 3; ++host)
        QCOMPARE(told(host).count("KORA_1.2.0.623.dat"), 1);
}

void tst_BatchUpgrade::packageDialogSpeaksOfFirmware()
{
    addBoxes(1);
    select({1});
    DialogAnswerer answers("cancelpushButton");
    answers.expect<QFileDialog>([this](QFileDialog& dialog) {
        QCOMPARE(dialog.labelText(QFileDialog::Accept), QString("选择固件"));
        QCOMPARE(dialog.labelText(QFileDialog::Reject), QString("取消"));
        QCOMPARE(dialog.nameFilters(), QStringList{"固件包文件 (*.dat)"});
        choosePath(dialog, m_package);
    });
    m_fixture->child<QAbstractButton>("firmwareUpdate")->click();
    QTRY_COMPARE(answers.texts(), QStringList{question(1)});
}

void tst_BatchUpgrade::md5ToolShowsTheDigest()
{
    addBoxes(0);
    QTRY_VERIFY(m_fixture->child<QWidget>("md5")->isHidden());
    DialogAnswerer answers;
    answers.expect<QFileDialog>([this](QFileDialog& dialog) { choosePath(dialog, m_package); });
    m_fixture->child<QAbstractButton>("md5")->click();
    QTRY_VERIFY(m_fixture->window().findChild<messageBox*>());
    QCOMPARE(m_fixture->window().findChild<messageBox*>()->text(),
             "KORA_1.2.0.623.dat\nMD5: " + md5Of(readFile(m_package)));
}

void tst_BatchUpgrade::noMacNamesAProperty()
{
    addBoxes(1);
    Tarn_Hub& window = m_fixture->window();
    const QStringList macs{"deviceip", // a property of the window
                           "enabled",  // and of every widget
                           "needrestore", "", "02:4B:4F:00:00:0G", "02:4B:4F:00:00:01\nenabled"};
    window.setProperty("needrestore", macs);
    const auto state = [&window] {
        QString all;
        QDebug debug(&all);
        for (const QByteArray& name : window.dynamicPropertyNames())
            debug << name << window.property(name);
        debug << window.isEnabled();
        return all;
    };
    const QString before = state();
    m_boxes[1]->clearRequests();
    // An answer that nobody asked for says nothing of any box.
    for (const QString& mac : macs) {
        deliver("upgradeRead", "eParam_MACAddress", mac);
        deliver("upgradeRead", "eParam_DHCP", "0");
        deliver("getDeviceinfo", "eParam_MACAddress", mac);
    }
    QTest::qWait(300); // for what must not come
    QCOMPARE(state(), before);
    QCOMPARE(told(1), QStringList());
}

void tst_BatchUpgrade::secondFailedWriteBackIsFinal()
{
    addBoxes(1);
    Tarn_Hub& window = m_fixture->window();
    const QString mac = m_fixture->item(1)->macAddress();
    QVERIFY(m_boxes[1]->addFault("fail write+eParam_NDIName"));
    leaveWaiting({{"eParam_NDIHXGopLength", "33"},
                  {"eParam_NDIName", "a=b&50%41"},
                  {"eParam_NTPServer", "x"}});
    hearBox();
    QTRY_COMPARE(window.property("needrestore").toStringList(), (QStringList{mac, mac + "1"}));
    QTRY_COMPARE(m_boxes[1]->activity().reboots, 1);
    QCOMPARE(told(1), (QStringList{"NDIHXGopLength=33", "NDIName=a%3Db%2650%2541", "NTPServer=x",
                                   "reboot"}));
    QCOMPARE(m_fixture->item(1)->property("restoreconfig").toMap().size(), 3);
    QTRY_VERIFY_WITH_TIMEOUT(m_boxes[1]->isOn(), 5000);
    hearBox();
    QTRY_VERIFY(window.property("needrestore").toStringList().isEmpty());
    QTRY_VERIFY(window.findChild<messageBox*>());
    QCOMPARE(window.findChild<messageBox*>()->text(),
             m_fixture->ip(1) + " 恢复设置失败,已尝试恢复,但任然失败,请检查KORA设备.");
    QTest::qWait(300);
    QCOMPARE(m_boxes[1]->activity().reboots, 1);
}

/// The program is killed in the middle of a batch; the next one tells, and brings back the
/// settings.
void tst_BatchUpgrade::survivesBeingKilled()
{
    for (int host = 1; host <= 3; ++host) {
        m_boxes[host] = m_fixture->addBox(host);
        m_boxes[host]->setParameter("eParam_NDIName", QString("=名前 & 50%41 \"%1\"").arg(host));
    }
    // One is told to change over before the end of the program, the others are in their upload.
    QVERIFY(m_boxes[2]->addFault("throttle 5000 on upload"));
    QVERIFY(m_boxes[3]->addFault("throttle 5000 on upload"));
    QVERIFY(m_boxes[1]->addFault("ota-loses-settings"));
    const auto before1 = m_boxes[1]->parameters();
    const auto before2 = m_boxes[2]->parameters();

    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QCoreApplication::applicationFilePath(), {"--as-program", "3", m_package});
    QTRY_COMPARE_WITH_TIMEOUT(m_boxes[1]->activity().reboots, 1, 20000);
    const QDir folder(m_fixture->dataFolder() + "batches");
    const auto journal = [&folder] {
        return readFile(folder.filePath(folder.entryList({"*.json"}).value(0, "none")));
    };
    QTRY_VERIFY(journal().contains("\"Activated\"") && journal().count("\"Waiting\"") == 3 &&
                journal().count("\"Uploading\"") == 2);
    program.kill();
    program.waitForFinished();
    QTRY_VERIFY_WITH_TIMEOUT(m_boxes[1]->isOn(), 5000);
    for (int host : {2, 3}) {
        m_boxes[host]->clearFaults();
        QCOMPARE(m_boxes[host]->activity().reboots, 0);
    }

    const DialogAnswerer answers("okpushButton");
    // Nobody saw whether the first box was away: it gets its settings after the whole allowance.
    m_fixture->open(quickUpgrades(20));
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts().size(), 1, 5000);
    QVERIFY2(answers.texts().first().contains("有3个KORA的设置尚未恢复"),
             qPrintable(answers.texts().first()));
    auto* button = m_fixture->child<QAbstractButton>("upgradeReport");
    QTRY_VERIFY(button->isVisible());
    button->click();
    // What was under way is told, and what the box says by now.
    QTRY_COMPARE_WITH_TIMEOUT(reportRows(*m_fixture)[m_fixture->ip(1)]["结果"], QString("已证实"),
                              15000);
    QCOMPARE(reportRows(*m_fixture)[m_fixture->ip(2)]["结果"], QString("已中断"));
    QCOMPARE(reportRows(*m_fixture)[m_fixture->ip(2)]["说明"], QString("中断时正在上传"));
    // A screen reader says of each cell whose it is.
    auto* table = m_fixture->child<QTableWidget>("upgradeReportTable");
    QAccessibleInterface* all = QAccessible::queryAccessibleInterface(table);
    QCOMPARE(all->text(QAccessible::Name), QString("升级报告"));
    for (int row = 0; row < table->rowCount(); ++row)
        QCOMPARE(all->tableInterface()->cellAt(row, 5)->text(QAccessible::Description),
                 table->item(row, 1)->text());
    for (int host = 1; host <= 3; ++host)
        QTRY_COMPARE_WITH_TIMEOUT(reportRows(*m_fixture)[m_fixture->ip(host)]["设置恢复"],
                                  QString("已恢复"), 20000);
    auto expected = before1;
    expected["eParam_FirmVersion"] = "1.2.0.623";
    QCOMPARE(m_boxes[1]->parameters(), expected);
    QCOMPARE(m_boxes[2]->parameters(), before2);
    QTRY_VERIFY(newestCsv(*m_fixture).startsWith("\"此批次升级曾被中断\"\r\n"));
    QCOMPARE(newestCsv(*m_fixture).count("\"已中断\""), 2);
}

/// The window alone, on the boxes of the test that started it: keeps the settings of all boxes and
/// upgrades them.
static int runAsProgram(QApplication& application, int boxes, const QString& package)
{
    StartUp::dress(application);
    Tarn_Hub window(WindowFixture::options());
    window.show();
    auto* view = window.findChild<TreeView*>("deviceView");
    const DialogAnswerer answers("Recovery");
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &window, [&] {
        const auto items = view->treeModel()->items("KORA");
        for (const Item* box : items) {
            if (!WindowFixture::isKnown(*box))
                return;
        }
        if (items.size() < boxes)
            return;
        timer.stop();
        view->selectAll();
        WindowFixture::drop(window.findChild<QWidget*>("device_list"), {package});
    });
    timer.start(100);
    QTimer::singleShot(60000, &application, [] { QCoreApplication::exit(1); });
    return QApplication::exec();
}

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == "--as-program")
        return runAsProgram(application, arguments.value(2).toInt(), arguments.value(3));
    tst_BatchUpgrade test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_batch_upgrade.moc"
