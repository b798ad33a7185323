// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_record.h"

/// What the versions that a box tells mean. Plain functions: they ask nobody.
namespace UpgradeJudgement
{
/// The version that the name of a package tells, as numbers joined by dots; empty when it tells
/// none.
QString versionIn(const QString& text);

/// `version`, told now, can only come from a change of the firmware: the box has another one than
/// before, and was away or tells that of the package.
bool hasChangedOver(const UpgradeRow& row, const QString& version, bool wasAway);

/// The row tells that the box has changed over to the package, beyond doubt.
bool isProof(const UpgradeRow& row);

/// Why it is none, for the operator.
QString doubt(const UpgradeRow& row);
} // namespace UpgradeJudgement
