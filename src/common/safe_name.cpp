// SPDX-License-Identifier: MIT
#include "common/safe_name.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace
{

/// A file system takes names of 255 bytes; a number and a suffix of ours may be added.
constexpr int mostBytes = 200;

int bytesIn(const QString& text)
{
    return text.toUtf8().size();
}

/// Shortened in front of the suffix, which tells what the file is, and never inside of a letter.
QString fitted(const QString& name)
{
    if (bytesIn(name) <= mostBytes)
        return name;
    constexpr int longestSuffix = 20;
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const bool hasSuffix = dot > 0 && bytesIn(name.mid(dot)) <= longestSuffix;
    const QString suffix = hasSuffix ? name.mid(dot) : QString();
    QString base = hasSuffix ? name.left(dot) : name;
    // It has at least as many bytes as UTF-16 units: one far too long is cut in one step.
    base.truncate(mostBytes);
    while (bytesIn(base) > mostBytes - bytesIn(suffix))
        base.chop(qAsConst(base).back().isLowSurrogate() ? 2 : 1);
    if (!base.isEmpty() && qAsConst(base).back().isHighSurrogate())
        base.chop(1);
    return base + suffix;
}

} // namespace

QString safeFileName(const QString& name)
{
    // What follows the last separator of either kind is the name; the rest is somebody's path.
    QString safe = name.mid(name.lastIndexOf(QRegularExpression(QStringLiteral("[/\\\\]"))) + 1);
    safe.remove(QRegularExpression(QStringLiteral("[:*?\"<>|\\x00-\\x1f\\x7f]")));
    while (safe.startsWith(QLatin1Char('.')) || safe.startsWith(QLatin1Char(' ')))
        safe.remove(0, 1);
    safe = fitted(safe);
    while (safe.endsWith(QLatin1Char('.')) || safe.endsWith(QLatin1Char(' ')))
        safe.chop(1);
    static const QRegularExpression reserved(
        QStringLiteral("^(con|prn|aux|nul|com[0-9]|lpt[0-9])(\\.|$)"),
        QRegularExpression::CaseInsensitiveOption);
    if (reserved.match(safe).hasMatch())
        safe.prepend(QLatin1Char('_'));
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
