// SPDX-License-Identifier: MIT
#include "common/data_path.h"

#include "common/platform.h"

#include <QCoreApplication>
#include <QDir>
#include <QSet>
#include <QThread>

namespace
{

bool isWindowThread()
{
    const QCoreApplication* program = QCoreApplication::instance();
    return program && QThread::currentThread() == program->thread();
}

/// The window asks again and again, and a disk that has gone would hold it up each time.
bool isKnownToWindow(const QString& path)
{
    static QSet<QString> known; // to that thread only
    if (!isWindowThread())
        return false;
    const int before = known.size();
    known.insert(path);
    return known.size() == before;
}

} // namespace

QString dataPath(const QString& sub)
{
    const QStringList levels{Platform::dataRoot(), QStringLiteral("Tarn Hub"), sub};
    const QString path = QDir::cleanPath(levels.join(QLatin1Char('/')));
    if (!isKnownToWindow(path))
        QDir().mkpath(path);
    return path + QLatin1Char('/');
}
