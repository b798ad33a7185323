// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The player as a process of its own, so that it is measured like any other: one picture area of
/// 1280x720, on the application's usual style.

/// Plays the file once and ends; prints "pictures <n> dropped <n> gaps <n over 30 ms> <longest ms>
/// memory <kB after ten seconds> <kB at the end> <most kB>" when `report` is asked for. The meter
/// takes some time of its own.
int playOnce(const QString& file, bool report);

/// Obeys lines on its standard input, "open ADDRESS" and "close", until that ends.
int playOnDemand();
