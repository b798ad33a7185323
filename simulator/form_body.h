// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

namespace sim
{

/// The fields of a form body or query as a box reads them: split at "&", then at the first "=".
/// "%3D" and the like are decoded; "%" without two hexadecimal digits and "+" stay as they are,
/// because not every sender encodes what it sends. Of a repeated field the last one counts.
QMap<QString, QString> parseForm(const QByteArray& body);

/// `value` without the single quotes around it; a quote on one side only is taken off as well.
QString withoutQuotes(QString value);

} // namespace sim
