// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// What crashes left in a folder, which ends in "/". These functions read and write files: not for
/// the GUI thread.
namespace CrashDumps
{

constexpr int kept = 10;

/// Removes all but the `kept` newest dumps, and unfinished ones that nobody writes any more.
void prune(const QString& folder);

/// The names of the dumps that no earlier call has told of, newest first. Where that cannot be
/// noted, the next call tells of them again.
QStringList takeNew(const QString& folder);

} // namespace CrashDumps
