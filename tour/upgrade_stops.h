// SPDX-License-Identifier: MIT
#pragma once

#include "tour/tour.h"

/// The stops at a batch of firmware upgrades.
const std::vector<Stop>& upgradeStops();
