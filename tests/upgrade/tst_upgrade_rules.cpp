// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "upgrade/interrupted_batch.h"
#include "upgrade/upgrade_judgement.h"

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;

const QDateTime now(QDate(2024, 5, 1), QTime(12, 0));

UpgradeRow rowAt(Stage stage)
{
    UpgradeRow row;
    row.mac = "02:4B:4F:00:00:01";
    row.address = row.addressBefore = "127.0.0.1";
    row.versionBefore = "1.2.0.517";
    row.expected = "1.2.0.623";
    row.stage = stage;
    row.started = now.addSecs(-5);
    return row;
}

} // namespace

/// The rules of an upgrade that need no box: what versions mean, what an interrupted batch left.
class tst_UpgradeRules : public QObject
{
    Q_OBJECT

private slots:
    void versionsInNames_data();
    void versionsInNames();
    void proof_data();
    void proof();
    void interruptedRows_data();
    void interruptedRows();
};

void tst_UpgradeRules::versionsInNames_data()
{
    columns<QString, QString>("name", "version");
    row("as they are called", "KORA_1.2.0.623", "1.2.0.623");
    row("with other numbers", "2 KORA 固件 v3 1.2.0.623 (2024.05)", "1.2.0.623");
    row("none", "firmware_12", "");
}

void tst_UpgradeRules::versionsInNames()
{
    QFETCH(QString, name);
    QTEST(UpgradeJudgement::versionIn(name), "version");
}

void tst_UpgradeRules::proof_data()
{
    columns<QString, QString, QString, QString, bool, bool, QString>(
        "before", "expected", "after", "seen", "changed", "proved", "doubt");
    const char* old = "1.2.0.517";
    const char* next = "1.2.0.623";
    row("the package's, never away", old, next, next, "", true, true, "");
    row("the package's in other words", old, next, "V1.2.0.623 (build 7)", "", true, true, "");
    row("another one, never away", old, next, "1.2.0.555", "", false, false, "版本与固件包不符");
    row("another one", old, next, "1.2.0.555", "away", true, false, "版本与固件包不符");
    row("another one, the name tells none", old, "", "1.2.0.555", "away", true, true, "");
    row("the same, never away, no name", old, "", "1.2.0.555", "", false, false,
        "版本与固件包不符");
    row("older", old, next, "1.1.9.999", "away", true, false, "版本退回到更旧的版本");
    row("as before", old, next, old, "away", false, false, "版本没有变化");
    row("unknown before", "", next, next, "away", false, false, "升级前版本未知,无法证实");
    row("silent", old, next, "", "away", false, false, "升级后未再回应");
    row("told by two boxes", old, next, next, "away twins", true, false,
        "网络中有两台设备的MAC地址相同,无法证实");
}

void tst_UpgradeRules::proof()
{
    const auto [before, expected, after, seen, changed, proved] =
        cells<QString, QString, QString, QString, bool, bool>();
    UpgradeRow row = rowAt(Stage::Activated);
    row.versionBefore = before;
    row.expected = expected;
    row.wasAway = seen.contains("away");
    row.ambiguous = seen.contains("twins");
    QCOMPARE(UpgradeJudgement::hasChangedOver(row, after, row.wasAway), changed);
    row.versionAfter = after;
    QCOMPARE(row.isProved(), proved);
    if (!proved)
        QTEST(UpgradeJudgement::doubt(row), "doubt");
}

void tst_UpgradeRules::interruptedRows_data()
{
    columns<Stage, bool, int, Stage, Settings, int>("stage", "ended", "daysAgo", "stageNow",
                                                    "settingsNow", "underWay");
    row("uploading", Stage::Uploading, false, 0, Stage::Interrupted, Settings::Waiting, 2);
    row("changing over", Stage::Activated, false, 0, Stage::Activated, Settings::Waiting, 2);
    row("its batch had ended", Stage::Activated, true, 0, Stage::Activated, Settings::Waiting, 0);
    row("failed", Stage::UploadFailed, false, 7, Stage::UploadFailed, Settings::Waiting, 0);
    row("stale", Stage::Activated, true, 8, Stage::Activated, Settings::Dropped, 0);
}

void tst_UpgradeRules::interruptedRows()
{
    const auto [stage, ended, daysAgo, stageNow, settingsNow, underWay] =
        cells<Stage, bool, int, Stage, Settings, int>();
    UpgradeSession session;
    session.started = now.addDays(-daysAgo);
    session.ended = ended;
    UpgradeRow row = rowAt(stage);
    row.settings = Settings::Waiting;
    UpgradeRow elsewhere = row;
    elsewhere.address = "http://example.org/";
    session.rows = {row, elsewhere};
    QCOMPARE(markInterrupted(session, now), underWay);
    QCOMPARE(session.interrupted, underWay > 0);
    QCOMPARE(session.rows[0].stage, stageNow);
    QCOMPARE(session.rows[0].settings, settingsNow);
    // Nothing but an address is ever asked.
    QCOMPARE(session.rows[0].address, QString("127.0.0.1"));
    QCOMPARE(session.rows[1].address, QString());
}

QTEST_GUILESS_MAIN(tst_UpgradeRules)
#include "tst_upgrade_rules.moc"
