// SPDX-License-Identifier: MIT
#pragma once

#include "tour/tour.h"

/// The stops at the monitor and the storage list.
const std::vector<Stop>& recordingStops();
