// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/model_lan.h"
#include "simulator/virtual_box.h"

namespace sim
{

/// Gives a virtual box the habits of a modelled one, on a clock of its own: `pace` milliseconds of
/// the model are one. Where it comes back is left to whoever gives the addresses.
void giveHabits(VirtualBox& box, const ModelBoxHabits& habits, int pace);

} // namespace sim
