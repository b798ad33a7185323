// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/area.h"
#include "ui_storage_area.h"

using StorageArea = Area<Ui::StorageArea>;
