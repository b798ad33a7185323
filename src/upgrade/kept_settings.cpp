// SPDX-License-Identifier: MIT
#include "upgrade/kept_settings.h"

#include "common/box_protocol.h"

namespace
{

/// A value that does not fit into a command line of every system is none of a box.
constexpr int longestValue = 8000;

QString lastTryOf(const QString& mac)
{
    return mac + QLatin1Char('1');
}

} // namespace

bool KeptSettings::isWaiting(const QString& mac) const
{
    return waiting().contains(mac);
}

void KeptSettings::addWaiting(const QString& mac)
{
    if (!isWaiting(mac))
        setWaiting(waiting() << mac);
}

void KeptSettings::removeWaiting(const QString& mac)
{
    remove(mac);
}

void KeptSettings::addLastTry(const QString& mac)
{
    addWaiting(mac);
    setWaiting(waiting() << lastTryOf(mac));
}

bool KeptSettings::takeLastTry(const QString& mac)
{
    return remove(lastTryOf(mac));
}

bool KeptSettings::remove(const QString& entry)
{
    QStringList list = waiting();
    const bool found = list.removeAll(entry) > 0;
    if (found)
        setWaiting(list);
    return found;
}

bool KeptSettings::isValue(const QVariant& value)
{
    return (value.type() == QVariant::String || value.type() == QVariant::Double ||
            value.type() == QVariant::LongLong) &&
           value.toString().size() <= longestValue;
}

QStringList KeptSettings::missingFrom(const QVariantMap& values)
{
    QStringList missing;
    for (const QString& name : BoxProtocol::configurationParameters()) {
        if (!values.contains(name))
            missing << name;
    }
    return missing;
}
