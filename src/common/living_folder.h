// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Where a file dialog is to begin: `wanted`, or the home folder when that is empty, no folder, or
/// on a share that does not answer soon. Blocks, serving events other than user input.
///
/// A dialog remembers where it was, for all of its kind, and looks there when it is made: who has
/// shown one sends it home before it goes.
QString livingFolder(const QString& wanted);
