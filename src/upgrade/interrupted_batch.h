// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_record.h"

/// Marks in `session`, as its journal tells it, what the end of the program cut short, and what is
/// not to be taken up. Returns how many boxes were under way.
int markInterrupted(UpgradeSession& session, const QDateTime& now);
