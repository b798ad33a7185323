// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_judgement.h"

/// Whether settings may be written to the box at `ip`, which makes it restart: not while it
/// receives a package or may still be changing over to it.
bool mayWriteBack(const UpgradeRow& row, const UpgradeSigns& signs, const QString& ip);
