// SPDX-License-Identifier: MIT
#include "tests/ui/upgrade/upgrade_fixture.h"
#include "upgrade/upgrade_journal.h"

/// No box is harmed, and nothing that is told is better than what is known.
class tst_UpgradeSafety : public QObject, UpgradeFixture
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { end(); }
    void asksWhoAnswers();
    void provesOnlyWhatItHasRead();
    void leavesABusyBoxAlone();
    void panelShowsWhatWasWrittenBack();
    void closingAsksAboutSettingsThatWait();
    void laterSettingsCount();
    void waitsForWhatWasOrderedBefore();
    void anErrorIsNoAbsence();

private:
    /// What the report says of the box that was at this address: versions, verdict, settings, note.
    QString reported(int host) const
    {
        const auto cells = reportRows(*m_fixture).value(m_fixture->ip(host));
        return QStringList{cells["升级前版本"], cells["升级后版本"], cells["结果"],
                           cells["设置恢复"], cells["说明"]}
            .join('|');
    }
    QString mac(int host) const { return m_boxes[host]->parameter("eParam_MACAddress"); }
};

void tst_UpgradeSafety::asksWhoAnswers()
{
    makeBoxes(5);
    m_boxes[4]->setParameter("eParam_MACAddress", mac(3));
    m_boxes[5]->setParameter("eParam_DHCP", "0");
    QVERIFY(m_boxes[5]->addFault("throttle 50000 on upload"));
    m_fixture->openKnowing({1, 2, 3, 4, 5}, quickUpgrades(20));
    // One leaves its row behind, and two swap their addresses just before the upgrade.
    QVERIFY(m_boxes[5]->moveTo(m_fixture->ip(6)));
    QStringList there;
    for (const int host : {1, 2, 3, 4, 6})
        there << m_fixture->ip(host);
    m_fixture->window().R_findDeviceIP(there);
    m_fixture->window().R_refreshDeviceIP(there);
    QTRY_VERIFY(m_fixture->item(6) && WindowFixture::isKnown(*m_fixture->item(6)));
    QVERIFY(!m_fixture->item(5)->isOnline());
    m_fixture->readAfter(1, [this] { select({1, 2, 3, 6}); });
    QVERIFY(m_boxes[1]->moveTo(m_fixture->ip(9)) && m_boxes[2]->moveTo(m_fixture->ip(1)) &&
            m_boxes[1]->moveTo(m_fixture->ip(2)));
    const DialogAnswerer answers("Recovery");
    drop({m_package});
    const auto shows = [this](int host, const QString& mac) {
        return m_fixture->item(host) && m_fixture->item(host)->macAddress() == mac;
    };
    QTRY_VERIFY(shows(1, mac(2)) && shows(2, mac(1)));
    QTRY_COMPARE_WITH_TIMEOUT(
        answers.texts(),
        (QStringList{question(4), "部分升级完成,KORA即将重启完成固件升级.成功[1]个,未知[3]个"}),
        20000);
    m_fixture->child<QAbstractButton>("upgradeReport")->click();
    const QString failed("||失败|未能完整读取，不恢复|");
    const QString another("此地址上现在是另一台设备（%1），未升级");
    QCOMPARE(reported(1), failed + another.arg(mac(2)));
    QCOMPARE(reported(2), failed + another.arg(mac(1)));
    QTRY_VERIFY_WITH_TIMEOUT(reported(6).endsWith("|1.2.0.623|已证实|已恢复|"), 20000);
    QVERIFY(reported(3).endsWith("|网络中有两台设备的MAC地址相同，无法保留设置，未升级"));
    QCOMPARE(m_boxes[5]->parameter("eParam_DHCP"), QString("0"));
    for (const int host : {1, 2, 3, 4})
        QCOMPARE(told(host), QStringList());
}

void tst_UpgradeSafety::provesOnlyWhatItHasRead()
{
    makeBoxes(4);
    for (sim::VirtualBox* box : qAsConst(m_boxes))
        box->setParameter("eParam_FirmVersion", "1.2.0.517");
    m_fixture->openKnowing({1, 2, 3, 4}, quickUpgrades(20));
    QVERIFY(m_boxes[2]->addFault("ota-slow 5000"));
    QVERIFY(m_boxes[3]->addFault("ota-falls-back 1.1.0.400"));
    // The last one was changed by somebody else since it was found.
    m_boxes[4]->setParameter("eParam_FirmVersion", "1.2.0.600");
    QVERIFY(m_boxes[4]->addFault("ota-old-version"));
    int whenGone = 0;
    connect(m_boxes[2], &sim::VirtualBox::reachableChanged, this, [&](bool reachable) {
        if (!reachable && !whenGone)
            whenGone = m_boxes[2]->requests().size();
    });
    m_fixture->deviceView()->selectAll();
    const DialogAnswerer answers("Recovery");
    drop({m_package});
    // The list is made anew at the end of the batch: the slow one is found as it was.
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts().size(), 2, 15000);
    m_fixture->window().R_findDeviceIP({m_fixture->ip(2)});
    QTRY_VERIFY(m_fixture->item(2) && WindowFixture::isKnown(*m_fixture->item(2)));
    m_fixture->item(2)->setPackageName("KORA_1.2.0.623");
    QVERIFY(m_fixture->item(2)->hasNewerFirmware());
    m_fixture->child<QAbstractButton>("upgradeReport")->click();
    QTRY_VERIFY_WITH_TIMEOUT(reported(2).contains("已证实"), 20000);
    QCOMPARE(m_fixture->item(2)->firmwareVersion(), QString("1.2.0.623"));
    QVERIFY(!m_fixture->item(2)->hasNewerFirmware());
    const QStringList expected{"1.2.0.517|1.2.0.623|已证实|已恢复|",
                               "1.2.0.517|1.2.0.623|已证实|已恢复|",
                               "1.2.0.517|1.1.0.400|未证实|已恢复|版本退回到更旧的版本",
                               "1.2.0.600|1.2.0.600|未证实|已恢复|版本没有变化"};
    for (const int host : {1, 2, 3, 4})
        QTRY_COMPARE_WITH_TIMEOUT(reported(host), expected[host - 1], 30000);
    // While it may still be at work on its package a box is asked, and nothing else.
    QVERIFY(whenGone > 0);
    const auto requests = m_boxes[2]->requests().mid(0, whenGone);
    int asked = 0;
    for (int n = requests.size() - 1; n >= 0 && requests[n].method == "GET"; --n)
        ++asked;
    QVERIFY2(asked >= 3 && requests[whenGone - 1 - asked].body == "action=ota",
             qPrintable(told(2).join(' ')));
    QCOMPARE(m_boxes[2]->activity().brokenChanges, 0);
}

void tst_UpgradeSafety::leavesABusyBoxAlone()
{
    addBoxes(2);
    m_fixture->select(1);
    leaveWaiting({{"eParam_NDIName", "kept"}});
    QVERIFY(m_boxes[1]->addFault("slow 300 on write"));
    m_boxes[1]->setRebootTime(9000, 9000);
    QVERIFY(m_boxes[2]->addFault("throttle 25000 on upload")); // its end makes the list anew
    select({1, 2});
    DialogAnswerer answers("okpushButton");
    // Its settings are being written since the question was asked.
    answers.expect<messageBox>([this](messageBox& asked) {
        QCOMPARE(asked.text(), question(2));
        hearBox();
        QVERIFY(m_fixture->item(1)->isOwned());
        asked.done(messageBox::Confirmed);
    });
    drop({m_package});
    QTRY_VERIFY(answers.isDone());
    const QString refusal =
        "KORA " + m_fixture->ip(1) + " 正在升级固件或恢复设置，请等待完成后再操作。";
    for (const char* name : {"save", "HB", "pushButton_live_on", "recode"}) {
        QTRY_VERIFY(m_fixture->child<QWidget>(name)->isEnabled());
        m_fixture->click(name);
    }
    m_fixture->clickRow(1, 26 - 8); // restart
    drop({m_package});
    QTRY_COMPARE(answers.texts().size(), 6);
    QVERIFY(m_fixture->item(1) && m_fixture->item(1)->isOwned());
    QCOMPARE(answers.texts().count(refusal), 5);
    QCOMPARE(answers.texts().last(), QString("设备正在升级固件或恢复设置，未再次升级"));
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts().last(),
                              QString("部分升级完成,KORA即将重启完成固件升级.成功[1]个,未知[1]个"),
                              15000);
    m_fixture->child<QAbstractButton>("upgradeReport")->click();
    QCOMPARE(reported(1), QString("||失败|未保留|设备正在升级固件或恢复设置，未再次升级"));
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(1) && !m_fixture->item(1)->isOwned(), 15000);
    QCOMPARE(told(1), (QStringList{"NDIName=kept", "reboot"}));
}

void tst_UpgradeSafety::panelShowsWhatWasWrittenBack()
{
    addBoxes(1);
    m_fixture->select(1, {"NDIName=factory"});
    QCOMPARE(m_fixture->shown("eParam_NDIName"), QString("factory"));
    leaveWaiting({{"eParam_NDIName", "kept"}});
    hearBox();
    QVERIFY(m_fixture->item(1)->isOwned());
    QTRY_VERIFY_WITH_TIMEOUT(!m_fixture->item(1)->isOwned(), 15000);
    // Else a save would undo it.
    QTRY_COMPARE(m_fixture->shown("eParam_NDIName"), QString("kept"));
}

void tst_UpgradeSafety::closingAsksAboutSettingsThatWait()
{
    makeBoxes(2);
    m_boxes[1]->setParameter("eParam_DHCP", "0");
    m_fixture->openKnowing({1, 2}, quickUpgrades(20));
    for (sim::VirtualBox* box : qAsConst(m_boxes))
        QVERIFY(box->addFault("ota-stays-away"));
    m_fixture->deviceView()->selectAll();
    DialogAnswerer answers("Recovery");
    drop({m_package});
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts().size(), 2, 15000);
    for (const char* button : {"cancelpushButton", "okpushButton"}) {
        answers.setButton(button);
        QCOMPARE(m_fixture->window().close(), QString(button) == "okpushButton");
        QCOMPARE(answers.texts().last(),
                 QString("还有2个KORA的设置等待恢复。如果现在关闭，下次启动时会询问是否恢复。"
                         "是否关闭？"));
    }
    m_fixture->close();
    answers.clear();
    QVERIFY(m_boxes[1]->plugIn());
    m_fixture->open(quickUpgrades(20));
    QTRY_COMPARE(answers.texts().size(), 1);
    QVERIFY(answers.texts().first().startsWith("上次固件升级中断时，有2个KORA的设置尚未恢复"));
    QTRY_COMPARE_WITH_TIMEOUT(m_boxes[1]->parameter("eParam_DHCP"), QString("0"), 15000);
    // Nothing was cut short: the batch had ended.
    QVERIFY(!newestCsv(*m_fixture).contains("中断"));
    QCOMPARE(answers.texts().size(), 1);
}

void tst_UpgradeSafety::laterSettingsCount()
{
    makeBoxes(1);
    const QDateTime now = QDateTime::currentDateTime();
    for (const int hoursAgo : {1, 3}) {
        UpgradeRow row;
        row.mac = hoursAgo == 1 ? mac(1) : mac(1).toLower();
        row.addressBefore = row.address = m_fixture->ip(1);
        row.stage = UpgradeRow::Stage::UploadFailed;
        row.settings = UpgradeRow::Settings::Waiting;
        row.settled = true;
        row.saved = {{"eParam_NDIName", QString("%1 hours ago").arg(hoursAgo)}};
        UpgradeSession session;
        session.started = row.started = now.addSecs(-3600 * hoursAgo);
        session.ended = true;
        session.rows << row;
        UpgradeJournal().save(session, true, [](bool) {});
    }
    const DialogAnswerer answers("okpushButton");
    m_fixture->open(quickUpgrades());
    QTRY_COMPARE(answers.texts().size(), 1);
    QVERIFY(answers.texts().first().contains("有1个KORA的设置尚未恢复"));
    const QDir folder(m_fixture->dataFolder() + "batches");
    QTRY_VERIFY_WITH_TIMEOUT(folder.entryList({"*.json"}).isEmpty(), 15000);
    QCOMPARE(told(1), (QStringList{"NDIName=1 hours ago", "reboot"}));
}

/// Half of a configuration would be kept for good, and a slow restart strike in the change.
void tst_UpgradeSafety::waitsForWhatWasOrderedBefore()
{
    makeBoxes(2);
    m_fixture->openKnowing({1, 2}, quickUpgrades(1000));
    QVERIFY(m_boxes[2]->addFault("slow 4000 on reboot"));
    {
        DialogAnswerer answers;
        m_fixture->select(2);
        m_fixture->clickRow(2, 26 - 8);
        QTRY_VERIFY(answers.texts().size() == 1);
    }
    m_fixture->select(1, WindowFixture::settings());
    QVERIFY(m_boxes[1]->addFault("slow 400 on write"));
    m_fixture->child<Inputui>("eParam_NDIName")->setText("New");
    const DialogAnswerer answers("Recovery");
    m_fixture->deviceView()->selectAll();
    QTimer::singleShot(600, this, [this] { drop({m_package}); });
    m_fixture->click("save");
    const auto isActivated = [this](int host) { return told(host).contains("ota"); };
    QTRY_VERIFY_WITH_TIMEOUT(isActivated(1) && isActivated(2), 40000);
    QCOMPARE(m_boxes[1]->activity().brokenChanges + m_boxes[2]->activity().brokenChanges, 0);
    const QStringList heard = told(1);
    const int switched = heard.indexOf("DHCP=1", heard.indexOf("NDIName=New"));
    QVERIFY2(switched > 0, qPrintable(heard.join(' ')));
    QVERIFY2(answers.texts().contains("设置参数成功."), qPrintable(answers.texts().join('|')));
    QVERIFY(told(2).indexOf("reboot") < told(2).indexOf("ota"));
}

/// A box at work on its package may answer anything.
void tst_UpgradeSafety::anErrorIsNoAbsence()
{
    makeBoxes(1);
    m_fixture->openKnowing({1}, quickUpgrades(100));
    QVERIFY(m_boxes[1]->addFault("ota-slow 9000"));
    select({1});
    const DialogAnswerer answers("Recovery");
    drop({m_package});
    QTRY_VERIFY_WITH_TIMEOUT(told(1).contains("ota"), 20000);
    QVERIFY(m_boxes[1]->addFault("http-error 503 on read"));
    QTest::qWait(3000);
    m_boxes[1]->setParameter("eParam_FirmVersion", "1.2.0.623");
    m_boxes[1]->clearFault(sim::FaultKind::HttpError);
    QTest::qWait(4000);
    QCOMPARE(m_boxes[1]->activity().brokenChanges, 0);
}

QTEST_MAIN(tst_UpgradeSafety)
#include "tst_upgrade_safety.moc"
