// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QWidget;

/// Lets the operator choose one existing firmware package. Blocks, serving events. Empty when
/// cancelled or when `parent` is deleted meanwhile.
QString chooseFirmwarePackage(QWidget* parent);
