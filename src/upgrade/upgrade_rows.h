// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QVariantMap>

class BoxUpgrade;
class DeviceRegistry;
class Item;
class UpgradeFleet;

/// Shows the boxes under upgrade in the rows of the device list; a row only looks.
class UpgradeRows : public QObject
{
    Q_OBJECT

public:
    /// Both outlive this object.
    UpgradeRows(DeviceRegistry& devices, UpgradeFleet& fleet);

    /// `item` is the row of `box`; it may go before it.
    void bind(BoxUpgrade& box, Item& item);

signals:
    /// Nothing of an upgrade happens any more to the box of the row at `ip`.
    void boxReleased(const QString& ip);

private:
    Item* rowOf(BoxUpgrade* box);
    void show(BoxUpgrade* box);
    void correct(const QString& ip, const QString& mac);
    void markOwned();

    DeviceRegistry& m_devices;
    UpgradeFleet& m_fleet;
    QHash<BoxUpgrade*, QPointer<Item>> m_rows;
    QHash<BoxUpgrade*, bool> m_owners;
};
