// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/virtual_box.h"

/// A box that is on; a restart or reboot of it takes so long.
inline std::unique_ptr<sim::VirtualBox> pluggedBox(const QString& ip, int restartMs = 2000)
{
    auto box = std::make_unique<sim::VirtualBox>(ip);
    box->setRebootTime(restartMs, restartMs);
    if (!box->plugIn())
        qFatal("no box at %s: %s", qPrintable(ip), qPrintable(box->errorString()));
    return box;
}
