// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/box_upgrade.h"
#include "upgrade/upgrade_sessions.h"

#include <QHash>
#include <QObject>

class KeptSettings;

/// How the upgrades of the present batches stand.
struct UpgradeCounts {
    int upgrading = 0;
    int timedOut = 0;
    int successful = 0;

    bool allEnded() const { return upgrading == timedOut + successful; }
};

/// All boxes under upgrade, those of this run and those that earlier runs left, and what one of
/// them has to know of the others. Knows nothing of rows, widgets and sockets.
class UpgradeFleet : public QObject, public UpgradeHost
{
    Q_OBJECT

public:
    /// The addresses at which boxes with this MAC address were last known.
    using Addresses = std::function<QStringList(const QString& mac)>;

    /// All of them outlive this object.
    UpgradeFleet(BoxLink& link, const UpgradeClock& clock, UpgradeStore& store, KeptSettings& kept,
                 Addresses addresses);
    ~UpgradeFleet() override;

    /// Begins a batch; boxes are added to the latest one.
    void begin(const FirmwarePackage& package);
    /// Upgrades the box at `ip`; `mac` is the one it is expected to tell, empty when that is not
    /// known. It lives as long as this object.
    BoxUpgrade& add(const QString& ip, const QString& mac, bool keepSettings);
    /// One that was chosen for the batch, too, but is not upgraded: the report says why.
    void leaveOut(const QString& ip, const QString& mac, const QString& reason);
    /// All boxes have been told, or are given up.
    void endBatch();

    /// The program may end now: what is not safe on disk yet is handed to the store.
    void saveAll() { m_sessions.saveAll(); }
    /// To be called often: limits pass and pauses end in it.
    void tick();
    /// One of the upgrade's seconds has passed.
    void countDown();
    /// A box at `ip` has told its MAC address.
    void heard(const QString& ip, const QString& mac);
    /// Somebody answers at `ip` again.
    void cameOnline(const QString& ip);

    /// Goes on with what an earlier run left; settingsFound() and interruptedFound() tell of it.
    void adopt(const QVector<UpgradeSession>& found);
    /// Settings that an earlier run left are wanted, or not.
    void release(const QStringList& macs);
    void dropSettings(const QStringList& macs);

    UpgradeCounts counts() const;
    /// An upgrade has the box with this MAC address, or the one at `ip` when either has told none.
    bool owns(const QString& mac, const QString& ip = QString()) const;
    /// Boxes whose settings wait for them.
    int waitingCount() const;
    /// No box is under way, and none waits for its settings.
    bool isIdle() const;
    /// Batches, oldest first.
    QVector<const UpgradeSession*> sessions() const { return m_sessions.all(); }

signals:
    /// Something of the box has changed.
    void boxChanged(BoxUpgrade* box);
    void told(BoxUpgrade* box, const QString& line);
    void boxIdentified(const QString& ip, const QString& mac);
    void versionHeard(const QString& ip, const QString& version);
    /// What the report says has changed.
    void reportChanged();
    void writingBack(const QString& ip, const QVariantMap& values);
    /// The box has taken its settings, and restarts. `verified`: read again, they are what they
    /// were.
    void restored(const QString& ip, bool verified);
    void restoreFailed(const QString& ip);
    /// Boxes of earlier batches still miss their settings, saved at `when`.
    void settingsFound(const QMap<QString, QVariantMap>& saved, const QDateTime& when);
    /// Upgrades of this many boxes were cut short when the program last ended.
    void interruptedFound(int boxes);

private:
    void keep(BoxUpgrade& box, std::function<void(bool kept)> then) override;
    void changed(BoxUpgrade& box) override;
    void tell(BoxUpgrade& box, const QString& line) override;
    void identified(const QString& ip, const QString& mac) override;
    void versionTold(const QString& ip, const QString& version) override;
    QStringList otherAddresses(const QString& mac, const QString& ip) const override;
    BoxUpgrade* ownerBeside(const BoxUpgrade& box) const override;
    bool takeOver(BoxUpgrade& box) override;
    void settingsRead(BoxUpgrade& box, const QVariantMap& values) override;
    void writeBackBegins(BoxUpgrade& box, const QVariantMap& values) override;
    void lastTryFollows(BoxUpgrade& box) override;
    void writeBackEnded(BoxUpgrade& box) override;

    BoxUpgrade& addToBatch(const QString& ip, const QString& mac, bool keepSettings);
    BoxUpgrade& addBox(UpgradeSession& session, const UpgradeRow& row);
    /// The upgrade that has the box with this MAC address, at `ip` if it is not sure yet that it is
    /// there, else the latest with settings that wait for it. One that found nobody is neither.
    BoxUpgrade* find(const QString& mac, const QString& ip = QString()) const;
    void mirrorWaiting(const BoxUpgrade& box);
    void endTakenOver(const BoxUpgrade& box);

    BoxLink& m_link;
    const UpgradeClock& m_clock;
    KeptSettings& m_kept;
    const Addresses m_addresses;
    UpgradeSessions m_sessions;
    FirmwarePackage m_package;
    UpgradeSession* m_latest = nullptr;
    std::vector<std::unique_ptr<BoxUpgrade>> m_boxes; ///< in the order of their batches
    /// Whose settings an upgrade took over that is not safe on disk yet: until then the one before
    /// stays open, or an end of the program between the two would lose them.
    QHash<const BoxUpgrade*, BoxUpgrade*> m_takenOver;
    /// Those of them that have ended already; how is being saved.
    QSet<const BoxUpgrade*> m_ending;
};
