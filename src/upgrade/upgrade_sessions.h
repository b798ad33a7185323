// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_clock.h"
#include "upgrade/upgrade_record.h"
#include "upgrade/upgrade_store.h"

#include <memory>
#include <vector>

/// The batches of this run of the program, and those that earlier runs left open. What was changed
/// goes to the store a moment later, all at once; what must be safe before anything else happens,
/// at once, together with whatever else waits for the same batch.
class UpgradeSessions
{
public:
    using Then = std::function<void(bool kept)>;

    /// Both outlive this object.
    UpgradeSessions(UpgradeStore& store, const UpgradeClock& clock);
    /// Whatever is not safe yet is handed to the store; nobody is told any more.
    ~UpgradeSessions();

    /// A batch that begins now; it lives as long as this object.
    UpgradeSession& add(const QString& package, const QString& md5);
    /// One that has no report and no journal.
    UpgradeSession& addUnlisted();
    /// Batches that an earlier run left open; they come before what this run has begun meanwhile.
    QVector<UpgradeSession*> adopt(const QVector<UpgradeSession>& found);

    /// `session` has changed.
    void touch(const UpgradeSession& session);
    /// Calls `then` once `session` is safe as it is now, or could not be saved; later.
    void keep(const UpgradeSession& session, Then then);
    /// Calls `then` once `session` is safe, however long the disk takes; later, or never.
    void whenKept(const UpgradeSession& session, std::function<void()> then);
    /// Hands whatever is not safe yet to the store.
    void saveAll();
    /// To be called often. True when something has been handed to the store.
    bool tick();

    /// Oldest first.
    QVector<const UpgradeSession*> all() const;
    bool isEmpty() const { return all().isEmpty(); }

private:
    struct Entry {
        UpgradeSession session;
        bool isListed = true;
        bool isTouched = false;
        qint64 touchedAt = 0;
        std::vector<Then> waiting; ///< for the next save
        std::vector<Then> saving;  ///< for the one under way
    };

    Entry& add(UpgradeSession session, bool listed);
    Entry& entryOf(const UpgradeSession& session);
    bool isRequested(const Entry& entry) const;
    void request(Entry& entry);
    void saveNext();
    void save(Entry& entry);
    void saved(Entry& entry, bool kept);

    UpgradeStore& m_store;
    const UpgradeClock& m_clock;
    std::vector<std::unique_ptr<Entry>> m_entries;
    std::vector<Entry*> m_requested; ///< to be saved, one after the other
    bool m_isSaving = false;
    std::shared_ptr<int> m_alive = std::make_shared<int>();
};
