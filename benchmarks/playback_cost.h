// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/playback_table.h"

/// Processor time of each player, and of the display server meanwhile, for films of this length;
/// the players take turns.
void measureCost(PlaybackTable& table, int seconds, int runs);
/// Drops, gaps and memory of this player alone over a film, `pictureGapMs` being wanted at most.
void measureSteadiness(PlaybackTable& table, const QString& name, const QString& film,
                       double pictureGapMs);
