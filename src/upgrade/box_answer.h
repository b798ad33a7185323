// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What a box has answered to one question, taken out of its text.
namespace BoxAnswer
{
/// The MAC address that it tells; empty when it tells none.
QString mac(const QString& answer);
/// It tells this MAC address, which is not empty.
bool isMac(const QString& answer, const QString& mac);
/// The same; of a box that has none, with an empty `mac`: it tells that it has none.
bool isFrom(const QString& answer, const QString& mac);
/// The version that it tells, at most as long as one is kept; empty when it tells none.
QString version(const QString& answer);
} // namespace BoxAnswer
