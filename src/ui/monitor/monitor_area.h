// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/area.h"
#include "ui_monitor_area.h"

using MonitorArea = Area<Ui::MonitorArea>;
