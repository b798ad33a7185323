// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/area.h"
#include "ui_control_area.h"

using ControlArea = Area<Ui::ControlArea>;
