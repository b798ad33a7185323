// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/area.h"
#include "ui_configuration_area.h"

using ConfigurationArea = Area<Ui::ConfigurationArea>;
