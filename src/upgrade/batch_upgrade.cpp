// SPDX-License-Identifier: MIT
#include "upgrade/batch_upgrade.h"

#include "common/package_digest.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "upgrade/upgrade_judgement.h"
#include "upgrade/upgrade_rows.h"

#include <QFileInfo>
#include <QTimer>

#include <algorithm>

namespace
{

/// Something is to be seen of the bar from the start.
constexpr int firstProgress = 30;

/// As the rows show boxes whose package is still being read, and those that are not upgraded.
constexpr ItemUpgrade taken{true, false, false, false, Item::UpgradeAllowance};
constexpr ItemUpgrade released{false, false, false, false, Item::UpgradeAllowance};

constexpr int orderPauseMs = 100;
constexpr int mostOrderWaits = 1200;

static_assert(Item::UpgradeAllowance == BoxUpgrade::AllowanceTicks, "one allowance");

} // namespace

BatchUpgrade::BatchUpgrade(DeviceRegistry& devices, UpgradeFleet& fleet, UpgradeRows& rows)
    : QObject(nullptr), m_devices(devices), m_fleet(fleet), m_rows(rows)
{
}

BatchUpgrade::~BatchUpgrade() = default;

QList<Item*> BatchUpgrade::idleOf(const QList<Item*>& boxes)
{
    QList<Item*> idle;
    for (Item* box : boxes) {
        if (box->isKora() && !box->isOwned())
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
        if (box)
            pending.boxes.push_back(choose(*box));
    }
    if (pending.boxes.empty())
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

/// It is looked at again: while the question was open an upgrade may have taken it.
BatchUpgrade::Chosen BatchUpgrade::choose(Item& box)
{
    Chosen chosen{&box, box.address(), box.macAddress(), {}};
    if (box.isOwned()) {
        chosen.leftOut = BoxUpgrade::ownedText();
        return chosen;
    }
    box.showUpgrade(taken);
    box.addTip(tr("正在计算固件校验值"));
    box.setActivity(tr("计算校验值"));
    return chosen;
}

/// For two minutes at most: then those that are still busy are left out.
bool BatchUpgrade::waitsForOrders(Pending& pending)
{
    const bool isOver = pending.waits++ >= mostOrderWaits;
    bool waits = false;
    for (Chosen& box : pending.boxes) {
        if (!box.item || !box.leftOut.isEmpty() || !box.item->isOrdered())
            continue;
        waits = true;
        if (pending.waits == 1)
            box.item->addTip(tr("正在等待此前的操作完成"));
        if (!isOver)
            continue;
        box.leftOut = tr("此前的操作未完成，未升级");
        box.item->addTip(box.leftOut);
        box.item->showUpgrade(released);
    }
    return waits && !isOver;
}

void BatchUpgrade::digestReady(const PackageDigest* digest)
{
    const auto found = std::find_if(m_pending.begin(), m_pending.end(), [digest](const Pending& p) {
        return p.digest.get() == digest;
    });
    for (const Chosen& box : found->boxes) {
        if (box.item && box.leftOut.isEmpty())
            box.item->setActivity(QString());
    }
    // What was ordered before ends first: half of a configuration, or a restart that strikes in the
    // change, would harm the box.
    if (waitsForOrders(*found)) {
        QTimer::singleShot(orderPauseMs, this, [this, digest] { digestReady(digest); });
        return;
    }
    Pending pending = std::move(*found);
    m_pending.erase(found);
    if (!digest->digest().isEmpty()) {
        begin(pending, digest->path(), digest->digest());
        return;
    }
    // Nothing has been sent to any box, and nothing will be.
    for (const Chosen& box : pending.boxes) {
        if (box.item && box.leftOut.isEmpty())
            box.item->showUpgrade(released);
    }
    emit packageUnreadable();
}

void BatchUpgrade::begin(Pending& pending, const QString& file, const QString& md5)
{
    const QString version = UpgradeJudgement::versionIn(QFileInfo(file).completeBaseName());
    m_fleet.begin({file, md5, version});
    for (Chosen& box : pending.boxes) {
        if (!box.item && box.leftOut.isEmpty())
            box.leftOut = tr("设备已不在列表中，未升级");
        if (box.leftOut.isEmpty())
            m_rows.bind(m_fleet.add(box.item->address(), box.item->macAddress(), pending.keep),
                        *box.item);
        else
            m_fleet.leaveOut(box.ip, box.mac, box.leftOut);
    }
    addAllowance();
    emit started(counts());
}

void BatchUpgrade::addAllowance()
{
    m_maximum = (m_running ? m_maximum : 0) + BoxUpgrade::AllowanceTicks;
    if (!m_running)
        m_progress = firstProgress;
    m_running = true;
}

UpgradeCounts BatchUpgrade::counts() const
{
    UpgradeCounts counts = m_fleet.counts();
    for (const Pending& pending : m_pending)
        counts.upgrading += int(pending.boxes.size());
    return counts;
}

void BatchUpgrade::tick()
{
    m_fleet.countDown();
    m_devices.model().announceLayout();
    m_progress = qMin(m_progress + 1, m_maximum);
    const UpgradeCounts counts = this->counts();
    if (counts.allEnded() && !m_held)
        finish(counts);
    else
        emit ticked(counts);
}

void BatchUpgrade::finish(const UpgradeCounts& counts)
{
    m_running = false;
    m_fleet.endBatch();
    m_devices.forgetIdleDevices();
    emit ended(counts);
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
