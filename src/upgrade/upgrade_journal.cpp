// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_journal.h"

#include "common/data_path.h"
#include "common/json_map.h"

#include <QDir>
#include <QJsonDocument>
#include <QSaveFile>

#include <climits>

namespace
{

constexpr int mostJournals = 50;
constexpr qint64 largestJournal = 64 * 1024 * 1024;

/// Apart from where anybody on the network has a say in what files are called.
QString folder()
{
    return dataPath(QStringLiteral("batches"));
}

/// Earlier versions kept batches among the installers.
void adoptEarlier()
{
    const QString earlier = dataPath(QStringLiteral("upgrade"));
    const QFileInfoList files = QDir(earlier).entryInfoList(
        {QStringLiteral("upgrade_*.json"), QStringLiteral("upgrade_*.csv")},
        QDir::Files | QDir::NoSymLinks);
    for (const QFileInfo& info : files) {
        QLockFile lock(earlier + info.completeBaseName() + QStringLiteral(".lock"));
        lock.setStaleLockTime(0);
        if (lock.tryLock(0))
            QFile::rename(info.filePath(), folder() + info.fileName());
    }
}

bool writeWhole(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit())
        return true;
    qWarning("cannot write %s", qPrintable(path));
    return false;
}

} // namespace

UpgradeJournal::UpgradeJournal(QObject* parent) : QObject(parent)
{
    m_pool.setMaxThreadCount(1);
    // One thread for good: a lock belongs to the thread's process, the map to the thread.
    m_pool.setExpiryTimeout(-1);
}

UpgradeJournal::~UpgradeJournal()
{
    m_pool.waitForDone();
}

QString UpgradeJournal::csvPath(const UpgradeSession& session)
{
    return folder() + session.baseName() + QStringLiteral(".csv");
}

void UpgradeJournal::save(const UpgradeSession& session, bool open, Saved saved)
{
    m_pool.start([this, session, open, saved = std::move(saved)] {
        const bool kept = write(session, open);
        QMetaObject::invokeMethod(this, [saved, kept] { saved(kept); });
    });
}

bool UpgradeJournal::write(const UpgradeSession& session, bool open)
{
    const QString journal = folder() + session.baseName() + QStringLiteral(".json");
    claim(session.baseName());
    const bool kept =
        !open ||
        writeWhole(journal, QJsonDocument(session.toJson()).toJson(QJsonDocument::Compact));
    const bool reported =
        writeWhole(csvPath(session), UpgradeText::csv(session, QDateTime::currentDateTime()));
    // Last: until the report is there, the journal is the only witness.
    if (!open && reported) {
        QFile::remove(journal);
        m_locks.erase(session.baseName());
    }
    return open ? kept : reported;
}

bool UpgradeJournal::claim(const QString& baseName)
{
    std::unique_ptr<QLockFile>& lock = m_locks[baseName];
    if (!lock) {
        lock = std::make_unique<QLockFile>(folder() + baseName + QStringLiteral(".lock"));
        // However old: what counts is whether its program still runs.
        lock->setStaleLockTime(0);
    }
    if (lock->isLocked() || lock->tryLock(0))
        return true;
    m_locks.erase(baseName);
    return false;
}

void UpgradeJournal::load()
{
    m_pool.start([this] {
        adoptEarlier();
        const QVector<UpgradeSession> sessions = readAll();
        QMetaObject::invokeMethod(this, [this, sessions] { emit loaded(sessions); });
    });
}

QVector<UpgradeSession> UpgradeJournal::readAll()
{
    QVector<UpgradeSession> sessions;
    const QFileInfoList files = QDir(folder()).entryInfoList(
        {QStringLiteral("upgrade_*.json")}, QDir::Files | QDir::NoSymLinks, QDir::Name);
    // Those that cannot be read do not count: nobody hides a batch behind them.
    for (auto it = files.rbegin(); it != files.rend() && sessions.size() < mostJournals; ++it) {
        const QFileInfo& info = *it;
        QFile file(info.filePath());
        if (info.size() > largestJournal || !file.open(QIODevice::ReadOnly))
            continue;
        UpgradeSession session;
        QString problem;
        constexpr int mostParts = INT_MAX; // its size is bounded, and this is no thread of a window
        const QJsonObject json = jsonObject(file.readAll(), mostParts).value_or(QJsonObject());
        if (!UpgradeSession::fromJson(json, &session, &problem))
            // Left alone: a newer version of the program may have written it.
            qWarning("journal %s is not read: %s", qPrintable(info.fileName()),
                     qPrintable(problem));
        else if (session.baseName() == info.completeBaseName() && claim(session.baseName()))
            sessions.prepend(session);
    }
    return sessions;
}
