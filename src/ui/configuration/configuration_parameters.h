// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/parameter_row.h"

class HubState;
namespace Ui
{
class ConfigurationArea;
}

/// The parameters of the configuration area, one row each; the area and the state outlive them.
ParameterTable configurationParameters(const Ui::ConfigurationArea& area, HubState& state);
