// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace sim
{

/// The names of all parameters with a text as value, in alphabetical order (the two lists,
/// recordings and decode sources, are not among them).
QStringList parameterNames();

/// Whether a box takes this parameter from outside, and with this value.
bool isAcceptable(const QString& name, const QString& value);

/// The settings of a new box. `number` makes boxes differ: names, MAC address, disk space and
/// versions follow from it.
QMap<QString, QString> factorySettings(int number, const QString& address);

} // namespace sim
