// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/virtual_lan.h"
#include "tour/tour.h"

/// Everything that an operator sees of the program, empty, ordinary and overflowing, in this order.
/// `lan` is still without boxes and outlives them; the screens fill it as they need it.
std::vector<Stop> galleryScreens(sim::VirtualLan& lan);
