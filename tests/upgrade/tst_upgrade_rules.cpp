// SPDX-License-Identifier: MIT
#include "device/item.h"
#include "device/tree_model.h"
#include "tests/support/table.h"
#include "upgrade/interrupted_batch.h"
#include "upgrade/upgrade_countdown.h"
#include "upgrade/write_back_permit.h"

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;
using Verdict = UpgradeRow::Verdict;

const QDateTime now(QDate(2024, 5, 1), QTime(12, 0));

/// What was seen of a box, in words.
UpgradeSigns signsOf(const QString& words)
{
    UpgradeSigns signs;
    signs.orderOpen = words.contains("open");
    signs.wasDown = words.contains("down");
    signs.quiet = words.contains("quiet");
    signs.restarting = words.contains("restarting");
    signs.batchEnded = words.contains("ended") || words.contains("late");
    signs.outOfTime = words.contains("late");
    return signs;
}

UpgradeRow rowAt(Stage stage)
{
    UpgradeRow row;
    row.mac = "02:4B:4F:00:00:01";
    row.address = row.addressBefore = "127.0.0.1";
    row.versionBefore = "1.0";
    row.stage = stage;
    row.started = now.addSecs(-5);
    return row;
}

} // namespace

Q_DECLARE_METATYPE(UpgradeRow::Verdict)

/// The rules of an upgrade that need no box: counting down, judging, permitting, what an
/// interrupted batch left.
class tst_UpgradeRules : public QObject
{
    Q_OBJECT

private slots:
    void countdownTimesOut();
    void countdownAddsBatches();
    void judge_data();
    void judge();
    void versionOfABoxThatHasNotGone();
    void writeBack_data();
    void writeBack();
    void interruptedRows_data();
    void interruptedRows();
};

void tst_UpgradeRules::countdownTimesOut()
{
    TreeModel model;
    Item* group = Item::makeGroup(koraFamily()).release();
    model.append(group, model.root(), true);
    QVector<Item*> boxes;
    for (int host = 1; host <= 3; ++host) {
        boxes << Item::makeBox(QString("127.0.0.%1").arg(host)).release();
        model.append(boxes.last(), group, false);
    }
    boxes[0]->reserveForUpgrade();
    boxes[1]->reserveForUpgrade();
    boxes[1]->markActivated();
    UpgradeCountdown countdown(model);
    for (int second = 0; second < Item::UpgradeAllowance; ++second)
        countdown.tick();
    QCOMPARE(boxes[0]->secondsLeft(), 0);
    QVERIFY(!boxes[0]->hasTimedOut());
    QVERIFY(!countdown.counts().allEnded());
    countdown.tick();
    QVERIFY(boxes[0]->hasTimedOut());
    // One that has succeeded, and one that nobody upgrades, have all the time there is.
    QCOMPARE(boxes[1]->secondsLeft(), Item::UpgradeAllowance);
    QCOMPARE(boxes[2]->secondsLeft(), Item::UpgradeAllowance);
    const UpgradeCounts counts = countdown.counts(koraFamily());
    QCOMPARE(counts.upgrading, 2);
    QCOMPARE(counts.successful, 1);
    QCOMPARE(counts.timedOut, 1);
    QVERIFY(counts.allEnded());
    QCOMPARE(countdown.counts("RIVER·2").upgrading, 0);
}

void tst_UpgradeRules::countdownAddsBatches()
{
    TreeModel model;
    UpgradeCountdown countdown(model);
    countdown.addBatch();
    countdown.tick();
    countdown.addBatch();
    QCOMPARE(countdown.progress(), 31);
    QCOMPARE(countdown.maximum(), 1200);
    countdown.stop();
    countdown.addBatch();
    QCOMPARE(countdown.progress(), 30);
    QCOMPARE(countdown.maximum(), 600);
    for (int second = 0; second < 700; ++second)
        countdown.tick();
    QCOMPARE(countdown.progress(), 600);
}

void tst_UpgradeRules::judge_data()
{
    columns<Stage, QString, Settings, QString, Verdict, bool>("stage", "versionAfter", "settings",
                                                              "seen", "verdict", "settled");
    const Settings none = Settings::NotKept;
    row("uploading", Stage::Uploading, "", none, "", Verdict::UnderWay, false);
    row("told, batch goes on", Stage::Activated, "2.0", none, "", Verdict::Proved, false);
    row("told, batch over", Stage::Activated, "2.0", none, "ended", Verdict::Proved, true);
    row("waits for its settings", Stage::Activated, "2.0", Settings::Waiting, "ended",
        Verdict::Proved, false);
    row("has its settings", Stage::Activated, "2.0", Settings::Restored, "ended", Verdict::Proved,
        true);
    row("silent", Stage::Activated, "", none, "ended", Verdict::UnderWay, false);
    row("silent for too long", Stage::Activated, "", none, "late", Verdict::NotProved, true);
    row("too late for its settings", Stage::Activated, "2.0", Settings::Waiting, "late",
        Verdict::Proved, true);
    row("version as before", Stage::Activated, "1.0", none, "ended", Verdict::NotProved, true);
    row("upload failed", Stage::UploadFailed, "", none, "ended", Verdict::Failed, true);
    row("interrupted", Stage::Interrupted, "", none, "ended", Verdict::Interrupted, false);
}

void tst_UpgradeRules::judge()
{
    QFETCH(Stage, stage);
    QFETCH(QString, versionAfter);
    QFETCH(Settings, settings);
    QFETCH(QString, seen);
    UpgradeRow row = rowAt(stage);
    row.versionAfter = versionAfter;
    row.settings = settings;
    UpgradeJudgement::judge(row, signsOf(seen), now);
    QTEST(row.verdict(), "verdict");
    QTEST(row.settled, "settled");
    if (row.settled)
        QCOMPARE(row.durationMs, 5000);
}

void tst_UpgradeRules::versionOfABoxThatHasNotGone()
{
    UpgradeRow row = rowAt(Stage::Activated);
    UpgradeSigns signs = signsOf("ended");
    signs.reported = "1.0";
    UpgradeJudgement::noteVersion(row, signs);
    QCOMPARE(row.versionAfter, QString());
    // Once it was away, the same version is an answer.
    signs.wasDown = true;
    UpgradeJudgement::noteVersion(row, signs);
    QCOMPARE(row.versionAfter, QString("1.0"));
}

void tst_UpgradeRules::writeBack_data()
{
    columns<Stage, QString, QString, QString, bool>("stage", "seen", "versionAfter", "ip", "may");
    const char* here = "127.0.0.1";
    row("preparing", Stage::Preparing, "down quiet", "", here, false);
    row("uploading", Stage::Uploading, "down quiet", "2.0", here, false);
    row("order unanswered", Stage::Activated, "open down quiet", "2.0", here, false);
    row("told just now", Stage::Activated, "", "", here, false);
    row("was away", Stage::Activated, "down", "", here, true);
    row("ignored the order", Stage::Activated, "quiet", "", here, true);
    row("tells the new version", Stage::Activated, "", "2.0", here, true);
    row("tells the old version", Stage::Activated, "", "1.0", here, false);
    row("is elsewhere", Stage::Activated, "", "", "127.0.0.9", true);
    row("upload failed", Stage::UploadFailed, "", "", here, true);
    row("restarting after a failed upload", Stage::UploadFailed, "restarting", "", here, false);
    row("restarting with the new version", Stage::Activated, "restarting", "2.0", here, false);
    row("restarted", Stage::Activated, "restarting down", "2.0", here, true);
}

void tst_UpgradeRules::writeBack()
{
    QFETCH(Stage, stage);
    QFETCH(QString, seen);
    QFETCH(QString, versionAfter);
    QFETCH(QString, ip);
    UpgradeRow row = rowAt(stage);
    row.versionAfter = versionAfter;
    QTEST(mayWriteBack(row, signsOf(seen), ip), "may");
}

void tst_UpgradeRules::interruptedRows_data()
{
    columns<Stage, int, Stage, Settings>("stage", "daysAgo", "stageNow", "settingsNow");
    row("uploading", Stage::Uploading, 0, Stage::Interrupted, Settings::Waiting);
    row("failed", Stage::UploadFailed, 7, Stage::UploadFailed, Settings::Waiting);
    row("stale", Stage::Activated, 8, Stage::Interrupted, Settings::Dropped);
}

void tst_UpgradeRules::interruptedRows()
{
    QFETCH(Stage, stage);
    QFETCH(int, daysAgo);
    UpgradeSession session;
    session.started = now.addDays(-daysAgo);
    UpgradeRow row = rowAt(stage);
    row.settings = Settings::Waiting;
    row.saved = {{"eParam_DHCP", "0"}};
    UpgradeRow elsewhere = row;
    elsewhere.address = "http://example.org/";
    session.rows = {row, elsewhere};
    const InterruptedBatch found = markInterrupted(session, now);
    QTEST(session.rows[0].stage, "stageNow");
    QTEST(session.rows[0].settings, "settingsNow");
    QCOMPARE(found.underWay > 0, stage != Stage::UploadFailed);
    QCOMPARE(session.interrupted, found.underWay > 0);
    QCOMPARE(found.settings.contains(row.mac), session.rows[0].settings == Settings::Waiting);
    // Nothing but an address is ever asked.
    QVERIFY(!session.rows[0].settled);
    QVERIFY(session.rows[1].settled);
}

QTEST_GUILESS_MAIN(tst_UpgradeRules)
#include "tst_upgrade_rules.moc"
