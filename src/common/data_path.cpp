// SPDX-License-Identifier: MIT
#include "common/data_path.h"

#include "common/platform.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QHash>
#include <QThread>

namespace
{

bool isWindowThread()
{
    const QCoreApplication* program = QCoreApplication::instance();
    return program && QThread::currentThread() == program->thread();
}

/// What lies there tells of the operator's network, keys of streams among it.
void makePrivate(const QString& folder)
{
    constexpr QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                          QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    const QFile::Permissions now = QFile::permissions(folder);
    if (now & others)
        QFile::setPermissions(folder, now & ~others);
}

bool make(const QString& base, const QString& path)
{
    const bool isMade = QDir().mkpath(path);
    makePrivate(base);
    makePrivate(path);
    return isMade;
}

/// The window asks again and again, and a disk that has gone would hold it up each time: there the
/// folder is made once, and looked for again after a while only if that failed.
void makeForWindow(const QString& base, const QString& path)
{
    constexpr qint64 againMs = 30000;
    static QHash<QString, QDeadlineTimer> tried; // by that thread only
    const auto last = tried.constFind(path);
    if (last != tried.constEnd() && !last->hasExpired())
        return;
    const bool isMade = make(base, path);
    tried.insert(path, isMade ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(againMs));
}

} // namespace

QString dataPath(const QString& sub)
{
    const QString base = QDir::cleanPath(Platform::dataRoot() + QStringLiteral("/Tarn Hub"));
    const QString path = QDir::cleanPath(base + QLatin1Char('/') + sub);
    if (isWindowThread())
        makeForWindow(base, path);
    else
        make(base, path);
    return path + QLatin1Char('/');
}
