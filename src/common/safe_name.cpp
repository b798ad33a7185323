// SPDX-License-Identifier: MIT
#include "common/safe_name.h"

#include <QFileInfo>
#include <QRegularExpression>

QString safeFileName(const QString& name)
{
    constexpr int longestName = 200;
    // What follows the last separator of either kind is the name; the rest is somebody's path.
    QString safe = name.mid(name.lastIndexOf(QRegularExpression(QStringLiteral("[/\\\\]"))) + 1);
    safe.remove(QRegularExpression(QStringLiteral("[:*?\"<>|\\x00-\\x1f\\x7f]")));
    while (safe.startsWith(QLatin1Char('.')) || safe.startsWith(QLatin1Char(' ')))
        safe.remove(0, 1);
    while (safe.endsWith(QLatin1Char('.')) || safe.endsWith(QLatin1Char(' ')))
        safe.chop(1);
    static const QRegularExpression reserved(
        QStringLiteral("^(con|prn|aux|nul|com[0-9]|lpt[0-9])(\\.|$)"),
        QRegularExpression::CaseInsensitiveOption);
    if (reserved.match(safe).hasMatch())
        safe.prepend(QLatin1Char('_'));
    if (safe.size() > longestName)
        safe = safe.left(longestName / 2) + safe.right(longestName / 2);
    return safe.isEmpty() ? QStringLiteral("download") : safe;
}

QString freePath(const QString& folder, const QString& name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const QString base = dot < 0 ? name : name.left(dot);
    const QString suffix = dot < 0 ? QString() : name.mid(dot);
    QString path = folder + name;
    for (int n = 0; QFileInfo::exists(path) || QFileInfo::exists(path + partSuffix()); ++n)
        path = folder + base + QString::number(n) + suffix;
    return path;
}
