// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_rows.h"

#include "common/box_protocol.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "upgrade/upgrade_fleet.h"

UpgradeRows::UpgradeRows(DeviceRegistry& devices, UpgradeFleet& fleet)
    : QObject(nullptr), m_devices(devices), m_fleet(fleet)
{
    connect(&fleet, &UpgradeFleet::boxChanged, this, &UpgradeRows::show);
    connect(&fleet, &UpgradeFleet::told, this, [this](BoxUpgrade* box, const QString& line) {
        if (Item* item = rowOf(box))
            item->addTip(line);
    });
    connect(&fleet, &UpgradeFleet::boxIdentified, this, &UpgradeRows::correct);
    connect(&fleet, &UpgradeFleet::versionHeard, this,
            [this](const QString& ip, const QString& version) {
                if (Item* item = m_devices.model().find(ip))
                    item->setFirmwareVersion(version);
            });
    connect(&fleet, &UpgradeFleet::writingBack, this,
            [this](const QString& ip, const QVariantMap& values) {
                if (Item* item = m_devices.model().find(ip))
                    item->setConfigurationToRestore(values);
            });
    connect(&devices, &DeviceRegistry::deviceAdded, this, &UpgradeRows::markOwned);
}

void UpgradeRows::bind(BoxUpgrade& box, Item& item)
{
    m_rows.insert(&box, &item);
    show(&box);
}

Item* UpgradeRows::rowOf(BoxUpgrade* box)
{
    return m_rows.value(box);
}

void UpgradeRows::show(BoxUpgrade* box)
{
    Item* item = rowOf(box);
    if (item)
        item->showUpgrade({box->isInBatch(), box->hasTimedOut(), box->hasSucceeded(),
                           box->isUploaded(), box->secondsLeft()});
    bool& wasOwner = m_owners[box];
    if (wasOwner == box->isOwner())
        return;
    wasOwner = box->isOwner();
    markOwned();
}

/// Another box answers at an address, or one whose MAC address was not known.
void UpgradeRows::correct(const QString& ip, const QString& mac)
{
    Item* item = m_devices.model().find(ip);
    if (item && !BoxProtocol::isSameMac(item->macAddress(), mac)) {
        item->setMacAddress(mac);
        m_devices.model().announceLayout();
    }
    markOwned();
}

void UpgradeRows::markOwned()
{
    QStringList released;
    const QList<Item*> items = m_devices.model().items(koraFamily());
    for (Item* item : items) {
        const bool isOwned = m_fleet.owns(item->macAddress(), item->address());
        if (item->isTaken() && !isOwned)
            released << item->address();
        item->setOwned(isOwned);
    }
    for (const QString& ip : qAsConst(released))
        emit boxReleased(ip);
}
