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

/// The window asks again and again, and a disk that has gone would hold it up each time: there the
/// folder is made once, and looked for again after a while only if that failed.
void makeForWindow(const QString& path)
{
    constexpr qint64 againMs = 30000;
    static QHash<QString, QDeadlineTimer> tried; // by that thread only
    const auto last = tried.constFind(path);
    if (last != tried.constEnd() && !last->hasExpired())
        return;
    const bool isMade = QDir().mkpath(path);
    tried.insert(path, isMade ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(againMs));
}

} // namespace

QString dataPath(const QString& sub)
{
    const QStringList levels{Platform::dataRoot(), QStringLiteral("Tarn Hub"), sub};
    const QString path = QDir::cleanPath(levels.join(QLatin1Char('/')));
    if (isWindowThread())
        makeForWindow(path);
    else
        QDir().mkpath(path);
    return path + QLatin1Char('/');
}
