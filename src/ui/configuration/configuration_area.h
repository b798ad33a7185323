// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/area.h"
#include "ui_configuration_area.h"

/// The configuration area, with what its fields show until a box has been read.
class ConfigurationArea : public Area<Ui::ConfigurationArea>
{
public:
    explicit ConfigurationArea(QWidget* parent = nullptr);
};
