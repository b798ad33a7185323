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
    return stage == Stage::Preparing
               ? QCoreApplication::translate("UpgradeReport", "中断时尚未开始上传")
               : QCoreApplication::translate("UpgradeReport", "中断时正在上传");
}

} // namespace

int markInterrupted(UpgradeSession& session, const QDateTime& now)
{
    int underWay = 0;
    for (UpgradeRow& row : session.rows) {
        const bool before = row.stage == Stage::Preparing || row.stage == Stage::Uploading;
        // A batch that had ended was not cut short: its boxes change over without this program.
        if (!session.ended && !row.settled && (before || row.stage == Stage::Activated)) {
            ++underWay;
            session.interrupted = true;
        }
        if (before && !row.settled) {
            row.note = stageNote(row.stage);
            row.stage = Stage::Interrupted;
        }
        const bool isStale = session.started.daysTo(now) > stalestDays;
        if (row.settings == Settings::Waiting && (row.mac.isEmpty() || isStale)) {
            row.settings = Settings::Dropped;
            if (isStale)
                row.aftermath = QCoreApplication::translate("UpgradeReport", "保存的设置已超过%1天")
                                    .arg(stalestDays);
        }
        // Only an address may be asked, whatever the file says.
        if (!BoxProtocol::isIpv4Address(row.address))
            row.address.clear();
    }
    session.ended = true;
    return underWay;
}
