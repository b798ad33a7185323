// SPDX-License-Identifier: MIT
#include "common/log_folder.h"

#include "common/data_path.h"
#include "common/operation_log.h"

#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QStorageInfo>

#include <algorithm>

namespace
{

constexpr qint64 lookPauseMs = 10000;
constexpr qint64 lookBytes = 4 * 1024 * 1024;
constexpr qint64 tidyPauseMs = 300000;
/// Of a file on most disks, however little is in it.
constexpr qint64 blockBytes = 4096;
constexpr int keyChars = 64;
constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner;
/// The program's own remarks on the log.
const QString ownKey = QStringLiteral("log");

qint64 nowMs()
{
    static const QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return clock.elapsed();
}

/// The key may be a host name from an address; it never names another folder.
QString fileName(const QString& key, const QString& ending)
{
    QString name = key.left(keyChars);
    for (QChar& c : name) {
        if (!c.isLetterOrNumber() && c != QLatin1Char('.') && c != QLatin1Char('-'))
            c = QLatin1Char('_');
    }
    return QDate::currentDate().toString(Qt::ISODate) + QStringLiteral("---") + name + ending +
           QStringLiteral(".txt");
}

/// The day of a log, from its name; none of a file that is no log of ours.
QDate dayOf(const QString& name)
{
    static const QRegularExpression ours(
        QStringLiteral("^(\\d{4}-\\d\\d-\\d\\d)---.+_tarn_hub(?:_overtake)?(?:\\.\\d+)?\\.txt$"));
    return QDate::fromString(ours.match(name).captured(1), Qt::ISODate);
}

void makePrivate(const QFileInfo& file)
{
    constexpr QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                          QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    if (file.permissions() & others)
        QFile::setPermissions(file.filePath(), ownerOnly);
}

struct Log {
    QFileInfo file;
    QDate day;

    qint64 sizeOnDisk() const { return (file.size() + blockBytes - 1) / blockBytes * blockBytes; }
};

/// Ours alone, the oldest first. Today's come last, also when the clock was set back since others
/// were written.
QVector<Log> logsIn(const QString& folder, const QDate& today)
{
    const QFileInfoList files = QDir(folder).entryInfoList(
        {QStringLiteral("*.txt")}, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    QVector<Log> logs;
    for (const QFileInfo& file : files) {
        const QDate day = dayOf(file.fileName());
        if (day.isValid())
            logs.append({file, day});
    }
    std::sort(logs.begin(), logs.end(), [today](const Log& a, const Log& b) {
        if ((a.day == today) != (b.day == today))
            return b.day == today;
        return a.day != b.day ? a.day < b.day : a.file.lastModified() < b.file.lastModified();
    });
    return logs;
}

/// The last day on which something was logged, before today; today when there is none. What is too
/// old goes by that: a clock that is years ahead for an hour takes no log away.
QDate latestBefore(const QDate& today, const QVector<Log>& logs)
{
    QDate latest;
    for (const Log& log : logs) {
        if (log.day != today && (!latest.isValid() || log.day > latest))
            latest = log.day;
    }
    return latest.isValid() ? latest : today;
}

} // namespace

void LogFolder::append(const QString& key, const QString& ending, const QString& record)
{
    lookNowAndThen();
    if (!m_hasRoom) {
        ++m_leftOut;
        return;
    }
    const QString path = dataPath(QStringLiteral("log")) + fileName(key, ending);
    rotate(path, record.size());
    const bool isWritten = appendToFile(path, record, QIODevice::Append);
    if (isWritten)
        m_unlooked += record.size() * 2;
    else
        ++m_leftOut;
    if (m_isWritable.exchange(isWritten) && !isWritten)
        qWarning("cannot write the log %s", qPrintable(path));
}

void LogFolder::look()
{
    const std::lock_guard<std::mutex> turn(m_looking);
    const QString folder = dataPath(QStringLiteral("log"));
    tidy(folder);
    noteRoom(hasRoom(folder));
}

void LogFolder::lookNowAndThen()
{
    if (nowMs() < m_nextLook && m_unlooked < lookBytes)
        return;
    // One looks; whoever else writes goes by what was seen last.
    const std::unique_lock<std::mutex> turn(m_looking, std::try_to_lock);
    if (!turn.owns_lock())
        return;
    m_unlooked = 0;
    m_nextLook = nowMs() + lookPauseMs;
    const QString folder = dataPath(QStringLiteral("log"));
    if (nowMs() >= m_nextTidying) {
        m_nextTidying = nowMs() + tidyPauseMs;
        tidy(folder);
    }
    noteRoom(hasRoom(folder));
}

bool LogFolder::hasRoom(const QString& folder) const
{
    const QStorageInfo disk(folder);
    const qint64 reserve =
        qMin(m_bounds.reserveBytes, disk.bytesTotal() / 100 * m_bounds.reservePercent);
    return !disk.isValid() || disk.bytesAvailable() > reserve;
}

void LogFolder::noteRoom(bool hasRoom)
{
    if (m_hasRoom.exchange(hasRoom) && !hasRoom)
        qWarning("the disk of the logs is nearly full; nothing is logged until it has room again");
    const int leftOut = m_leftOut;
    if (!hasRoom || leftOut == 0)
        return;
    const QString note = QStringLiteral("磁盘无法写入,略去 %1 条记录").arg(leftOut);
    const QString path =
        dataPath(QStringLiteral("log")) + fileName(ownKey, QStringLiteral("_tarn_hub"));
    if (appendToFile(path,
                     logLine(note, "src/common/log_folder.cpp", __LINE__,
                             QStringLiteral("LogFolder::noteRoom")),
                     QIODevice::Append))
        m_leftOut -= leftOut;
}

void LogFolder::tidy(const QString& folder) const
{
    const QDate today = QDate::currentDate();
    const QVector<Log> logs = logsIn(folder, today);
    const QDate oldest = qMin(today, latestBefore(today, logs)).addDays(-m_bounds.days);
    qint64 all = 0;
    for (const Log& log : logs)
        all += log.sizeOnDisk();
    for (const Log& log : logs) {
        if (log.day < oldest || all > m_bounds.folderBytes) {
            QFile::remove(log.file.filePath());
            all -= log.sizeOnDisk();
        } else {
            makePrivate(log.file);
        }
    }
}

/// A log that has become large is put by under a number, and a new one begins.
void LogFolder::rotate(const QString& path, qint64 more) const
{
    constexpr int mostNumbers = 10000;
    if (QFileInfo(path).size() + more <= m_bounds.fileBytes)
        return;
    const QString stem = path.chopped(QStringLiteral("txt").size());
    for (int n = 1; n < mostNumbers; ++n) {
        if (QFile::rename(path, stem + QString::number(n) + QStringLiteral(".txt")))
            return;
    }
}
