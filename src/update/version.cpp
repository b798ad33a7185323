// SPDX-License-Identifier: MIT
#include "update/version.h"

#include <QStringList>

namespace
{

constexpr int partCount = 4;

QStringList versionParts(const QString& version)
{
    QStringList parts = version.split(QLatin1Char('.'));
    if (parts.size() == partCount - 1)
        parts << QStringLiteral("0");
    return parts;
}

} // namespace

bool isNewerVersion(const QString& latest, const QString& own)
{
    const QStringList theirs = versionParts(latest);
    const QStringList ours = versionParts(own);
    if (theirs.size() != partCount || ours.size() != partCount)
        return false;
    for (int n = 0; n < partCount; ++n) {
        const int their = theirs.at(n).toInt();
        const int our = ours.at(n).toInt();
        if (their != our)
            return their > our;
    }
    return false;
}
