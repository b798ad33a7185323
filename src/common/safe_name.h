// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// A file name made of text from the network that stays inside its folder on every system: no
/// separators, control characters, reserved names or leading dots. Never empty.
QString safeFileName(const QString& name);
