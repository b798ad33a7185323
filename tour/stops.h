// SPDX-License-Identifier: MIT
#pragma once

#include "tour/tour.h"

/// The stops in their order, for the network that scripts/demo starts. Each finds the window as the
/// one before it left it.
const std::vector<Stop>& allStops();
