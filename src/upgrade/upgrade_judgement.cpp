// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_judgement.h"

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;

} // namespace

void UpgradeJudgement::endUpload(UpgradeRow& row, const QString& reason, const QDateTime& now)
{
    if (row.stage != Stage::Preparing && row.stage != Stage::Uploading)
        return;
    row.stage = Stage::UploadFailed;
    row.note = reason;
    row.durationMs = row.started.msecsTo(now);
}

void UpgradeJudgement::noteVersion(UpgradeRow& row, const UpgradeSigns& signs)
{
    // A box that has not gone away yet tells the version that it is about to leave.
    if (signs.reported != row.versionBefore || signs.wasDown)
        row.versionAfter = signs.reported;
}

void UpgradeJudgement::judge(UpgradeRow& row, const UpgradeSigns& signs, const QDateTime& now)
{
    if (signs.outOfTime && row.versionAfter.isEmpty())
        row.versionAfter = signs.reported;
    // Without its MAC address nobody can tell whether the box that answers is the same one.
    const bool certain = row.stage == Stage::UploadFailed || row.reportsNewVersion() ||
                         (row.stage == Stage::Activated &&
                          (row.mac.isEmpty() ? signs.batchEnded : !row.versionAfter.isEmpty()));
    if ((certain || signs.outOfTime) && row.durationMs == 0)
        row.durationMs = row.started.msecsTo(now);
    if (signs.batchEnded)
        row.settled = signs.outOfTime || (certain && row.settings != Settings::Waiting);
}
