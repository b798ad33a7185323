// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_engine.h"

#include "common/box_protocol.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"

namespace
{

constexpr int longestPauseMs = 250;
constexpr int shortestPauseMs = 20;

/// Where boxes that told this MAC address stand in the list, those that went offline included.
QStringList addressesOf(const QString& mac, const TreeModel& model)
{
    QStringList addresses;
    const QList<Item*> boxes = model.items(koraFamily());
    for (const Item* box : boxes) {
        if (BoxProtocol::isSameMac(box->macAddress(), mac))
            addresses << box->address();
    }
    return addresses;
}

} // namespace

UpgradeEngine::UpgradeEngine(DeviceRegistry& devices, Spark_Http& http, KeptSettings& kept,
                             int tickMs)
    : QObject(nullptr)
    , clock(tickMs)
    , link(http)
    , fleet(link, clock, journal, kept,
            [&devices](const QString& mac) { return addressesOf(mac, devices.model()); })
    , rows(devices, fleet)
    , batch(devices, fleet, rows)
{
    connect(&journal, &UpgradeJournal::loaded, &fleet, &UpgradeFleet::adopt);
    // Its row may stand in the list still, so that nobody asks it who it is.
    connect(&devices, &DeviceRegistry::cameOnline, &fleet, &UpgradeFleet::cameOnline);
    connect(&m_timer, &QTimer::timeout, &fleet, &UpgradeFleet::tick);
    m_timer.start(qBound(shortestPauseMs, tickMs / 2, longestPauseMs));
}

bool UpgradeEngine::keep(int ms)
{
    fleet.saveAll();
    return journal.flush(ms);
}
