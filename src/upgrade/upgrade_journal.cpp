// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_journal.h"

#include "common/data_path.h"
#include "common/json_map.h"

#include <QDir>
#include <QJsonDocument>
#include <QSaveFile>
#include <QTimer>

#include <climits>

namespace
{

constexpr int mostJournals = 50;
constexpr qint64 largestJournal = 64 * 1024 * 1024;
/// Whoever makes a lock has it for himself a moment later.
constexpr qint64 newLockMs = 2000;

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

/// The system itself knows whether anybody has the file: what it says counts when the number of its
/// process is another one's by now, or was never written.
bool takeLeftBehind(const QString& path, QLockFile& lock)
{
    const qint64 age = QFileInfo(path).lastModified().msecsTo(QDateTime::currentDateTime());
    return qAbs(age) > newLockMs && lock.removeStaleLockFile() && lock.tryLock(0);
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
    m_own.insert(session.baseName());
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
    const QString path = folder() + baseName + QStringLiteral(".lock");
    std::unique_ptr<QLockFile>& lock = m_locks[baseName];
    if (!lock) {
        lock = std::make_unique<QLockFile>(path);
        // However old: what counts is whether its program still runs.
        lock->setStaleLockTime(0);
    }
    if (lock->isLocked() || lock->tryLock(0) || takeLeftBehind(path, *lock))
        return true;
    m_locks.erase(baseName);
    return false;
}

void UpgradeJournal::load()
{
    m_pool.start([this] {
        adoptEarlier();
        look(true);
    });
}

void UpgradeJournal::look(bool isFirst)
{
    const QVector<UpgradeSession> sessions = readAll();
    QMetaObject::invokeMethod(this, [this, sessions, isFirst, again = m_areOthers] {
        if (again)
            QTimer::singleShot(AgainMs, this, [this] { m_pool.start([this] { look(false); }); });
        if (isFirst || !sessions.isEmpty())
            emit loaded(sessions);
    });
}

QVector<UpgradeSession> UpgradeJournal::readAll()
{
    QVector<UpgradeSession> sessions;
    m_areOthers = false;
    const QFileInfoList files = QDir(folder()).entryInfoList(
        {QStringLiteral("upgrade_*.json")}, QDir::Files | QDir::NoSymLinks, QDir::Name);
    // Those that cannot be read do not count: nobody hides a batch behind them.
    for (auto it = files.rbegin(); it != files.rend() && sessions.size() < mostJournals; ++it) {
        const QString name = it->completeBaseName();
        if (m_own.contains(name) || !read(*it))
            continue;
        if (!claim(name)) {
            m_areOthers = true;
            warnOnce(name, QStringLiteral("is another program's until that has ended"));
            continue;
        }
        // Once more: whoever had it may have gone on, or closed it, before it could be had.
        if (const std::optional<UpgradeSession> session = read(*it)) {
            m_own.insert(name);
            sessions.prepend(*session);
        } else {
            m_locks.erase(name);
        }
    }
    return sessions;
}

std::optional<UpgradeSession> UpgradeJournal::read(const QFileInfo& info)
{
    QFile file(info.filePath());
    if (file.size() > largestJournal || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    UpgradeSession session;
    QString problem;
    constexpr int mostParts = INT_MAX; // its size is bounded, and this is no thread of a window
    const QJsonObject json = jsonObject(file.readAll(), mostParts).value_or(QJsonObject());
    if (!UpgradeSession::fromJson(json, &session, &problem)) {
        // Left alone: a newer version of the program may have written it.
        warnOnce(info.fileName(), QStringLiteral("is not read: ") + problem);
        return std::nullopt;
    }
    return session.baseName() == info.completeBaseName() ? std::make_optional(session)
                                                         : std::nullopt;
}

void UpgradeJournal::warnOnce(const QString& name, const QString& text)
{
    if (!m_warned.contains(name))
        qWarning("journal %s %s", qPrintable(name), qPrintable(text));
    m_warned.insert(name);
}
