// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_record.h"

/// What has been seen of one box since its upgrade began, besides what its row keeps.
struct UpgradeSigns {
    bool orderOpen = false; ///< the order to change over is still unanswered
    bool wasDown = false;   ///< it stopped answering since it was last told to change or restart
    bool quiet = false;     ///< that order is so long ago that the box is not busy with it any more
    bool restarting = false; ///< told to restart, for its second try at its settings
    bool batchEnded = false;
    bool outOfTime = false; ///< its batch ended so long ago that nothing more is expected of it
    QString reported;       ///< the version that it told last
};

/// What a row says by what was seen. Plain functions: they ask nobody and change only the row.
namespace UpgradeJudgement
{
/// The longest version of a box that a row takes.
constexpr int longestVersion = 64;

/// The batch is over; `reason` is why a box has not got its package.
void endUpload(UpgradeRow& row, const QString& reason, const QDateTime& now);
/// The box has told the version in `signs`.
void noteVersion(UpgradeRow& row, const UpgradeSigns& signs);
/// Has the last word been spoken about this box?
void judge(UpgradeRow& row, const UpgradeSigns& signs, const QDateTime& now);
} // namespace UpgradeJudgement
