// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/playback_table.h"

/// From asking a player to the first picture on the screen, for a film as file and as recording of
/// a box, and for a live stream; the players take turns. The time of those that cannot wait until
/// they are asked includes their start.
void measureFirstPicture(PlaybackTable& table, const QString& film, int runs);
