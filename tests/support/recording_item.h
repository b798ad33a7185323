// SPDX-License-Identifier: MIT
#pragma once

#include "device/item.h"

#include <memory>

/// The row of a recording of that box.
inline std::unique_ptr<Item> recordingItem(const QString& box, const QString& name)
{
    auto item = std::make_unique<Item>();
    item->setProperty("filename", name);
    item->setProperty("deviceip", box);
    return item;
}
