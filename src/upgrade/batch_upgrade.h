// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_fleet.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

class DeviceRegistry;
class Item;
class PackageDigest;
class UpgradeRows;

/// Upgrades the boxes of the list in batches: starts them once the package's digest is known,
/// counts them, and ends when each has been told to change over or was given up.
class BatchUpgrade : public QObject
{
    Q_OBJECT

public:
    /// All of them outlive this object.
    BatchUpgrade(DeviceRegistry& devices, UpgradeFleet& fleet, UpgradeRows& rows);
    ~BatchUpgrade() override;

    /// Those of `boxes` that may be upgraded: KORA boxes that no upgrade has.
    static QList<Item*> idleOf(const QList<Item*>& boxes);

    /// Upgrades those of `boxes` that are still there and idle with the package `file`; of the
    /// others the report says why not. With `keep` their settings are read before and written back
    /// afterwards.
    void start(const QList<QPointer<Item>>& boxes, const QString& file, bool keep);

    /// One of the upgrade's seconds has passed.
    void tick();

    /// While a question about boxes of the list is open no batch ends, so that they stay in it.
    void setHeld(bool held) { m_held = held; }

    /// Those whose package is still being read included.
    UpgradeCounts counts() const;

    /// For a progress bar: seconds since the first batch, and what all of them are allowed.
    int progress() const { return m_progress; }
    int maximum() const { return m_maximum; }

    /// What the operator is told while boxes are under way, and when all have ended.
    static QString statusText(const UpgradeCounts& counts);
    static QString endText(const UpgradeCounts& counts);

signals:
    /// Boxes have been taken; their package is being read.
    void prepared();
    /// It could not be read: nothing was sent, and nothing will be.
    void packageUnreadable();
    void started(const UpgradeCounts& counts);
    void ticked(const UpgradeCounts& counts);
    void ended(const UpgradeCounts& counts);

private:
    struct Chosen {
        QPointer<Item> item;
        QString ip;
        QString mac;
        QString leftOut; ///< why it is not upgraded; empty while it is to be
    };
    /// A batch whose package is being read.
    struct Pending {
        std::vector<Chosen> boxes;
        bool keep = false;
        int waits = 0; ///< for what was ordered of its boxes before
        std::unique_ptr<PackageDigest> digest;
    };

    static Chosen choose(Item& box);
    bool waitsForOrders(Pending& pending);
    void digestReady(const PackageDigest* digest);
    void begin(Pending& pending, const QString& file, const QString& md5);
    void addAllowance();
    void finish(const UpgradeCounts& counts);

    DeviceRegistry& m_devices;
    UpgradeFleet& m_fleet;
    UpgradeRows& m_rows;
    std::vector<Pending> m_pending;
    bool m_held = false;
    bool m_running = false;
    int m_progress = 0;
    int m_maximum = 0;
};
