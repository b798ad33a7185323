// SPDX-License-Identifier: MIT
#include "upgrade/write_back_permit.h"

bool mayWriteBack(const UpgradeRow& row, const UpgradeSigns& signs, const QString& ip)
{
    using Stage = UpgradeRow::Stage;
    if (row.stage == Stage::Preparing || row.stage == Stage::Uploading)
        return false;
    // The order to change over is still unanswered: a restart would end it, and pass for success.
    if (signs.orderOpen)
        return false;
    if (row.stage == Stage::UploadFailed && !signs.restarting)
        return true;
    const bool back = signs.wasDown || signs.quiet;
    if (signs.restarting)
        return back;
    return back || row.reportsNewVersion() || ip != row.addressBefore;
}
