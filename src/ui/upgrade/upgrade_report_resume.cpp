// SPDX-License-Identifier: MIT
// What a batch left behind when the program ended in its middle.
#include "common/box_protocol.h"
#include "device/item.h"
#include "ui/upgrade/upgrade_report.h"

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
        return UpgradeReport::tr("中断时尚未开始上传");
    case Stage::Uploading:
        return UpgradeReport::tr("中断时正在上传");
    default:
        return UpgradeReport::tr("中断时已开始更新固件");
    }
}

} // namespace

void UpgradeReport::loadInterrupted()
{
    m_journal.load();
}

void UpgradeReport::adopt(const QVector<UpgradeSession>& sessions)
{
    QMap<QString, QVariantMap> waiting;
    QDateTime when;
    int underWay = 0;
    for (const UpgradeSession& found : sessions) {
        auto session = std::make_unique<UpgradeSession>(found);
        for (int index = 0; index < session->rows.size(); ++index) {
            UpgradeRow& row = session->rows[index];
            if (!row.settled && row.stage != Stage::UploadFailed && !row.reportsNewVersion()) {
                ++underWay;
                session->interrupted = true;
                row.note = stageNote(row.stage);
                row.stage = Stage::Interrupted;
            }
            if (row.settings == Settings::Waiting &&
                session->started.daysTo(QDateTime::currentDateTime()) > stalestDays)
                row.settings = Settings::Dropped;
            if (row.settings == Settings::Waiting) {
                waiting.insert(row.mac, row.saved);
                when = session->started;
            }
            adoptRow(session.get(), index);
        }
        touched(session.get());
        // They come before what this run has begun meanwhile.
        m_sessions.insert(m_sessions.begin(), std::move(session));
    }
    if (underWay > 0)
        emit interruptedFound(underWay);
    if (!waiting.isEmpty())
        emit settingsFound(waiting, when);
}

void UpgradeReport::adoptRow(UpgradeSession* session, int index)
{
    auto watch = std::make_unique<Watch>();
    watch->session = session;
    watch->index = index;
    watch->sinceOrder.start();
    watch->sinceEnd.start();
    // Only an address may be asked, whatever the file says.
    UpgradeRow& row = watch->row();
    row.settled = !BoxProtocol::isIpv4Address(row.address);
    m_watches.insert(m_watches.begin(), std::move(watch));
}
