// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The player as a process of its own, so that it is measured like any other: one picture area of
/// 1280x720, on the application's usual style.

/// Plays the source once, ends with it and prints "pictures <n> dropped <n>"; when `report` is
/// asked for, besides "longest-picture-gap <ms> longest-loop-gap <ms> memory-grown <kB>", gaps
/// counted after the first second and memory after ten. The meters take some time of their own.
int playOnce(const QString& source, bool report);

/// Obeys lines on its standard input, "open ADDRESS" and "close", until that ends.
int playOnDemand();
