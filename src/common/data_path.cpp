// SPDX-License-Identifier: MIT
#include "common/data_path.h"

#include "common/platform.h"

#include <QDir>

QString dataPath(const QString& sub)
{
    QString path = Platform::dataRoot() + QStringLiteral("/Tarn Hub");
    QDir().mkpath(path);
    const QStringList parts = sub.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        path += QLatin1Char('/') + part;
        QDir().mkdir(path);
    }
    return path + QLatin1Char('/');
}
