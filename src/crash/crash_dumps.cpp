// SPDX-License-Identifier: MIT
#include "crash/crash_dumps.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace
{

QFileInfoList newestFirst(const QString& folder, const QString& pattern)
{
    return QDir(folder).entryInfoList({pattern}, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                                      QDir::Time);
}

QString noteOf(const QString& folder)
{
    return folder + QStringLiteral("announced.txt");
}

} // namespace

namespace CrashDumps
{

void prune(const QString& folder)
{
    const QFileInfoList dumps = newestFirst(folder, QStringLiteral("TarnHub-*.dmp"));
    for (const QFileInfo& dump : dumps.mid(kept))
        QFile::remove(dump.filePath());
    // Another running program may be writing one right now.
    constexpr int longestWriteSecs = 60;
    const QDateTime oldest = QDateTime::currentDateTimeUtc().addSecs(-longestWriteSecs);
    const QFileInfoList parts = newestFirst(folder, QStringLiteral("TarnHub-*.dmp.part"));
    for (const QFileInfo& part : parts) {
        if (part.lastModified() < oldest)
            QFile::remove(part.filePath());
    }
}

QStringList takeNew(const QString& folder)
{
    QStringList names;
    const QFileInfoList dumps = newestFirst(folder, QStringLiteral("TarnHub-*.dmp"));
    for (const QFileInfo& dump : dumps)
        names << dump.fileName();
    QStringList known;
    QFile note(noteOf(folder));
    if (note.open(QIODevice::ReadOnly))
        known = QString::fromUtf8(note.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QStringList fresh;
    for (const QString& name : qAsConst(names)) {
        if (!known.contains(name))
            fresh << name;
    }
    if (fresh.isEmpty())
        return fresh;
    QSaveFile newNote(noteOf(folder));
    if (newNote.open(QIODevice::WriteOnly)) {
        newNote.write(names.join(QLatin1Char('\n')).toUtf8() + '\n');
        newNote.commit();
    }
    return fresh;
}

} // namespace CrashDumps
