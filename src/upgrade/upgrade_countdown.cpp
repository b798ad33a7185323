// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_countdown.h"

#include "device/item.h"
#include "device/tree_model.h"

namespace
{

/// Something is to be seen of the bar from the start.
constexpr int firstProgress = 30;

} // namespace

UpgradeCountdown::UpgradeCountdown(TreeModel& devices) : m_devices(devices) {}

void UpgradeCountdown::addBatch()
{
    m_maximum = (m_running ? m_maximum : 0) + Item::UpgradeAllowance;
    if (!m_running)
        m_progress = firstProgress;
    m_running = true;
}

void UpgradeCountdown::tick()
{
    bool touched = false;
    const QList<Item*> items = m_devices.items();
    for (Item* item : items)
        touched = item->countDown() || touched;
    m_progress = qMin(m_progress + 1, m_maximum);
    if (touched)
        m_devices.announceLayout();
}

void UpgradeCountdown::stop()
{
    m_running = false;
}

UpgradeCounts UpgradeCountdown::counts(const QString& group) const
{
    UpgradeCounts counts;
    const QList<Item*> boxes = m_devices.items(group);
    for (const Item* box : boxes) {
        counts.upgrading += box->isUpgrading() ? 1 : 0;
        counts.timedOut += box->hasTimedOut() ? 1 : 0;
        counts.successful += box->hasSucceeded() ? 1 : 0;
    }
    return counts;
}
