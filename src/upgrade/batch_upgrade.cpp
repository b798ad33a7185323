// SPDX-License-Identifier: MIT
#include "upgrade/batch_upgrade.h"

#include "common/package_digest.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "upgrade/configuration_snapshot.h"
#include "upgrade/upgrade_report.h"

#include <QFileInfo>

#include <algorithm>

BatchUpgrade::BatchUpgrade(DeviceRegistry& devices, UpgradeCountdown& countdown,
                           ConfigurationSnapshot& snapshot, UpgradeReport& report)
    : QObject(nullptr)
    , m_devices(devices)
    , m_countdown(countdown)
    , m_snapshot(snapshot)
    , m_report(report)
{
}

BatchUpgrade::~BatchUpgrade() = default;

QList<Item*> BatchUpgrade::idleOf(const QList<Item*>& boxes)
{
    QList<Item*> idle;
    for (Item* box : boxes) {
        const bool busy = box->isUpgrading() && !box->hasTimedOut();
        if (box->isKora() && !busy)
            idle << box;
    }
    return idle;
}

/// From here on the boxes count as being upgraded: the window stays open, they stay in the list and
/// no second batch takes them, though nothing is sent before the package's digest is known.
void BatchUpgrade::start(const QList<QPointer<Item>>& boxes, const QString& file, bool keep)
{
    Pending pending;
    pending.keep = keep;
    for (const QPointer<Item>& box : boxes) {
        if (!box)
            continue;
        box->reserveForUpgrade();
        box->addTip(tr("正在计算固件校验值"));
        pending.boxes << box;
    }
    if (pending.boxes.isEmpty())
        return;
    emit prepared();
    pending.digest = std::make_unique<PackageDigest>(file);
    PackageDigest* digest = pending.digest.get();
    connect(
        digest, &PackageDigest::ready, this, [this, digest] { digestReady(digest); },
        Qt::QueuedConnection);
    m_pending.push_back(std::move(pending));
    digest->start();
}

void BatchUpgrade::digestReady(const PackageDigest* digest)
{
    const auto found = std::find_if(m_pending.begin(), m_pending.end(), [digest](const Pending& p) {
        return p.digest.get() == digest;
    });
    const Pending pending = std::move(*found);
    m_pending.erase(found);
    const QString file = digest->path();
    const QString md5 = digest->md5();
    if (md5.isEmpty()) {
        giveUp(pending);
        return;
    }
    m_report.begin(QFileInfo(file).fileName(), md5);
    for (const QPointer<Item>& box : pending.boxes) {
        if (!box)
            continue;
        m_report.addBox(box, pending.keep);
        m_snapshot.take(box->macAddress(), box->address(), pending.keep, [box, file, md5] {
            if (box && box->isUpgrading())
                box->startUpgrade(file, md5);
        });
    }
    m_countdown.addBatch();
    emit started(m_countdown.counts());
}

/// The package cannot be read: nothing has been sent to any box, and nothing will be.
void BatchUpgrade::giveUp(const Pending& pending)
{
    for (const QPointer<Item>& box : pending.boxes) {
        if (box)
            box->endUpgrade();
    }
    emit packageUnreadable();
}

void BatchUpgrade::tick()
{
    m_countdown.tick();
    const UpgradeCounts counts = m_countdown.counts();
    if (counts.allEnded() && !m_held)
        finish(counts);
    else
        emit ticked(counts);
}

void BatchUpgrade::finish(const UpgradeCounts& counts)
{
    m_countdown.stop();
    m_report.batchEnded();
    const QList<Item*> items = m_devices.model().items();
    for (Item* item : items) {
        if (item->isUpgrading())
            item->endUpgrade();
    }
    m_devices.forgetIdleDevices();
    emit ended(counts);
}

void BatchUpgrade::macHeard(const QString& ip, const QString& mac)
{
    const QList<Item*> items = m_devices.model().items();
    for (Item* item : items) {
        // Before the package has arrived a new address means something else than success.
        if (item->macAddress() == mac && item->address() != ip && item->isUpgrading() &&
            item->isUploaded())
            item->markActivated();
    }
}

QString BatchUpgrade::statusText(const UpgradeCounts& counts)
{
    return tr("升级中,升级期间请不要关闭电源或者操作KORA.共[%1]个,成功[%2]个,未知[%3]个")
        .arg(counts.upgrading)
        .arg(counts.successful)
        .arg(counts.timedOut);
}

QString BatchUpgrade::endText(const UpgradeCounts& counts)
{
    return counts.timedOut < 1
               ? tr("全部升级完成,KORA即将重启完成固件升级.成功[%1]个").arg(counts.successful)
               : tr("部分升级完成,KORA即将重启完成固件升级.成功[%1]个,未知[%2]个")
                     .arg(counts.successful)
                     .arg(counts.timedOut);
}
