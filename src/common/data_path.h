// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The per-user data folder joined with `sub` ("log", "a/b", may be empty). Every level is created
/// if missing; for the window's thread only when it asks first. The result always ends in "/"; a
/// level that cannot be created is not reported.
QString dataPath(const QString& sub);
