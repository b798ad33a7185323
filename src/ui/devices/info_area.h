// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/area.h"
#include "ui_info_area.h"

using InfoArea = Area<Ui::InfoArea>;
