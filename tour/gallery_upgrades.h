// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/virtual_lan.h"
#include "tour/tour.h"

/// An upgrade from its question to its report, one box refusing it, and after that a list as long
/// as a network can make it. `lan` outlives the screens.
std::vector<Stop> galleryUpgrades(sim::VirtualLan& lan);
