// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/area.h"
#include "ui_device_area.h"

using DeviceArea = Area<Ui::DeviceArea>;
