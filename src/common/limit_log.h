// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Says in the log that `who`, an address, went over `what`, one of the limits in plain words; once
/// for the two, however often it happens. GUI thread only.
void limitReached(const QString& who, const QString& what);
