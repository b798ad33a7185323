// SPDX-License-Identifier: MIT
#include "upgrade/interrupted_batch.h"

#include "common/box_protocol.h"

#include <QCoreApplication>

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;

/// Settings older than this are not offered: somebody will have set the box up anew.
constexpr int stalestDays = 7;

QString stageNote(Stage stage)
{
    switch (stage) {
    case Stage::Preparing:
        return QCoreApplication::translate("UpgradeReport", "中断时尚未开始上传");
    case Stage::Uploading:
        return QCoreApplication::translate("UpgradeReport", "中断时正在上传");
    default:
        return QCoreApplication::translate("UpgradeReport", "中断时已开始更新固件");
    }
}

} // namespace

InterruptedBatch markInterrupted(UpgradeSession& session, const QDateTime& now)
{
    InterruptedBatch found;
    for (UpgradeRow& row : session.rows) {
        if (!row.settled && row.stage != Stage::UploadFailed && !row.reportsNewVersion()) {
            ++found.underWay;
            session.interrupted = true;
            row.note = stageNote(row.stage);
            row.stage = Stage::Interrupted;
        }
        if (row.settings == Settings::Waiting && session.started.daysTo(now) > stalestDays)
            row.settings = Settings::Dropped;
        if (row.settings == Settings::Waiting)
            found.settings.insert(row.mac, row.saved);
        // Only an address may be asked, whatever the file says.
        row.settled = !BoxProtocol::isIpv4Address(row.address);
    }
    return found;
}
