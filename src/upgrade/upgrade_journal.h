// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_record.h"
#include "upgrade/upgrade_store.h"

#include <QFileInfo>
#include <QLockFile>
#include <QObject>
#include <QSet>
#include <QThreadPool>

#include <map>
#include <memory>
#include <optional>

/// Keeps batches on disk in the data folder's "batches": a journal while something is open, so that
/// a batch survives the end of the program, and the report as a CSV file for good. All file work
/// happens on a thread of its own, in order; each file is replaced as a whole.
class UpgradeJournal : public QObject, public UpgradeStore
{
    Q_OBJECT

public:
    explicit UpgradeJournal(QObject* parent = nullptr);
    /// Waits until everything is written.
    ~UpgradeJournal() override;

    /// Writes both files; the journal is removed when `open` is false.
    void save(const UpgradeSession& session, bool open, Saved saved) override;
    /// Waits at most `ms` until everything is written; false when the disk is slower.
    bool flush(int ms) { return m_pool.waitForDone(ms); }
    /// Reads the journals that an earlier run left open; loaded() brings them, once each. Those of
    /// another program that is still running are left alone and looked at again every `AgainMs`:
    /// loaded() brings them, too, as soon as nobody has them.
    void load();
    static constexpr int AgainMs = 2000;

    /// Where the report of a batch lies.
    static QString csvPath(const UpgradeSession& session);

signals:
    void loaded(const QVector<UpgradeSession>& sessions);

private:
    bool write(const UpgradeSession& session, bool open);
    void look(bool isFirst);
    /// What nobody has, newest last.
    QVector<UpgradeSession> readAll();
    /// Nothing when the file is none of ours to take up, or cannot be read.
    std::optional<UpgradeSession> read(const QFileInfo& file);
    void warnOnce(const QString& name, const QString& text);
    /// True when this program has, or now gets, the journal for itself.
    bool claim(const QString& baseName);

    // Used on the pool's one thread only.
    std::map<QString, std::unique_ptr<QLockFile>> m_locks;
    QSet<QString> m_own; ///< batches that this program has begun or taken up
    bool m_areOthers = false;
    QSet<QString> m_warned;
    QThreadPool m_pool;
};
