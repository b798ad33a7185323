// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_countdown.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

class ConfigurationSnapshot;
class DeviceRegistry;
class Item;
class PackageDigest;
class UpgradeReport;

/// Upgrades boxes with one firmware package and supervises them, once a second, until each has
/// succeeded or run out of time. A batch that is started while one runs joins it.
class BatchUpgrade : public QObject
{
    Q_OBJECT

public:
    BatchUpgrade(DeviceRegistry& devices, UpgradeCountdown& countdown,
                 ConfigurationSnapshot& snapshot, UpgradeReport& report);
    ~BatchUpgrade() override;

    /// Those of `boxes` that can be upgraded now: a box is upgraded once at a time; one that has
    /// failed may be tried again.
    static QList<Item*> idleOf(const QList<Item*>& boxes);
    /// Upgrades `boxes` with the package `file`; with `keep` their settings are read first.
    void start(const QList<QPointer<Item>>& boxes, const QString& file, bool keep);
    /// While it is held a batch does not end: a question about its boxes is open.
    void setHeld(bool held) { m_held = held; }
    /// One second has passed.
    void tick();
    /// The box at `ip` has told its MAC address: it may be one that came back elsewhere.
    void macHeard(const QString& ip, const QString& mac);

    /// What the operator reads while boxes are under way.
    static QString statusText(const UpgradeCounts& counts);
    /// What the operator reads when no box is under way any more.
    static QString endText(const UpgradeCounts& counts);

signals:
    /// Boxes count as being upgraded from now on; nothing has been sent to them yet.
    void prepared();
    /// The package of prepared boxes cannot be read: they are not upgraded.
    void packageUnreadable();
    /// Boxes are told; from now on tick() is to be called.
    void started(const UpgradeCounts& counts);
    /// A second has passed, and boxes are still under way.
    void ticked(const UpgradeCounts& counts);
    /// No box is under way any more; tick() is not needed until the next start.
    void ended(const UpgradeCounts& counts);

private:
    /// Boxes that wait for the digest of their package.
    struct Pending {
        std::unique_ptr<PackageDigest> digest;
        QList<QPointer<Item>> boxes;
        bool keep = false;
    };
    void digestReady(const PackageDigest* digest);
    void giveUp(const Pending& pending);
    void finish(const UpgradeCounts& counts);

    DeviceRegistry& m_devices;
    UpgradeCountdown& m_countdown;
    ConfigurationSnapshot& m_snapshot;
    UpgradeReport& m_report;
    bool m_held = false;
    std::vector<Pending> m_pending;
};
