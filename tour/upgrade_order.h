// SPDX-License-Identifier: MIT
#pragma once

#include "tour/tour.h"

/// Orders an upgrade as an operator does: selects these boxes, chooses the package in the file
/// dialog, and answers the question, of which a picture is taken, with keeping the settings.
/// Whether all of that came.
bool orderUpgrade(Tour& tour, const QStringList& boxes, const QString& package);
