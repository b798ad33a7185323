// SPDX-License-Identifier: MIT
#include "common/safe_name.h"

#include <QFileInfo>
#include <QStringList>

#include <algorithm>

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

/// Without what means something to a file system, and without halves of letters, which would get
/// another name on the disk. By hand: no regular expression matches in a text with such a half.
QString withoutForbidden(const QString& name)
{
    QString kept;
    for (int at = 0; at < name.size(); ++at) {
        const QChar c = name.at(at);
        const bool isPair =
            c.isHighSurrogate() && at + 1 < name.size() && name.at(at + 1).isLowSurrogate();
        if (isPair)
            kept += name.mid(at++, 2);
        else if (!c.isSurrogate() && c.unicode() >= 0x20 && c.unicode() != 0x7f &&
                 !QStringLiteral(":*?\"<>|").contains(c))
            kept += c;
    }
    return kept;
}

/// A name that Windows takes for a device, or would once a number of ours stands behind it.
bool isDevice(const QString& base)
{
    static const QStringList devices{QStringLiteral("con"),    QStringLiteral("prn"),
                                     QStringLiteral("aux"),    QStringLiteral("nul"),
                                     QStringLiteral("conin$"), QStringLiteral("conout$")};
    const bool isPort = base.startsWith(QLatin1String("com"), Qt::CaseInsensitive) ||
                        base.startsWith(QLatin1String("lpt"), Qt::CaseInsensitive);
    return devices.contains(base, Qt::CaseInsensitive) ||
           (isPort && (base.size() == 3 || (base.size() == 4 && base.at(3).digitValue() >= 0)));
}

} // namespace

QString safeFileName(const QString& name)
{
    // What follows the last separator of either kind is the name; the rest is somebody's path.
    const int end = qMax(name.lastIndexOf(QLatin1Char('/')), name.lastIndexOf(QLatin1Char('\\')));
    QString safe = withoutForbidden(name.mid(end + 1));
    const auto isVisible = [](QChar c) { return c != QLatin1Char('.') && c != QLatin1Char(' '); };
    const auto begin = std::find_if(safe.cbegin(), safe.cend(), isVisible);
    safe = fitted(safe.mid(int(begin - safe.cbegin())));
    while (safe.endsWith(QLatin1Char('.')) || safe.endsWith(QLatin1Char(' ')))
        safe.chop(1);
    if (isDevice(safe.section(QLatin1Char('.'), 0, 0).trimmed()))
        safe.prepend(QLatin1Char('_'));
    return safe.isEmpty() ? QStringLiteral("download") : safe;
}

QString nameInDisposition(const QByteArray& header)
{
    const QString text = QString::fromUtf8(header);
    const QString mark = QStringLiteral("filename=");
    const int at = text.indexOf(mark);
    if (at < 0)
        return QString();
    QString name = text.mid(at + mark.size()).section(QLatin1Char(';'), 0, 0).trimmed();
    name.remove(QLatin1Char('"'));
    return name.isEmpty() ? QString() : safeFileName(name);
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
