// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Whether `latest` is a newer version than `own`. Both are dotted; three parts mean a fourth of 0,
/// and a part that is not a number counts as 0. Any other number of parts is no version: false.
bool isNewerVersion(const QString& latest, const QString& own);
