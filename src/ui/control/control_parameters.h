// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/parameter_row.h"

class HubState;
namespace Ui
{
class ControlArea;
}

/// The parameters of the control area, one row each; the area and the state outlive them. None is
/// saved: the area's controls send each change themselves.
ParameterTable controlParameters(const Ui::ControlArea& area, HubState& state);
