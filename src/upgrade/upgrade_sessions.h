// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_journal.h"
#include "upgrade/upgrade_record.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

/// The batches of this run of the program, and those that earlier runs left open. What was changed
/// goes to disk a moment later, all at once.
class UpgradeSessions : public QObject
{
    Q_OBJECT

public:
    UpgradeSessions();
    /// Whatever is not on disk yet is written.
    ~UpgradeSessions() override;

    /// A batch that begins now; it lives as long as this object.
    UpgradeSession& add(const QString& package, const QString& md5);
    /// Looks for batches that an earlier run left open; adopted() brings them.
    void load();
    void touch(UpgradeSession& session);

    /// Oldest first.
    QVector<const UpgradeSession*> all() const;
    bool isEmpty() const { return m_sessions.empty(); }

signals:
    void adopted(const QVector<UpgradeSession*>& sessions);
    /// What was changed has been handed to the journal.
    void changed();

private:
    void adopt(const QVector<UpgradeSession>& found);
    void save();

    UpgradeJournal m_journal;
    std::vector<std::unique_ptr<UpgradeSession>> m_sessions;
    QVector<UpgradeSession*> m_touched;
    QTimer m_save;
};
