// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/playback_table.h"

/// From the sender's clock to the screen: how late each player's picture is, the players taking
/// turns. Each row is a median over `seconds`, beside it the 95th percentile.
void measureLag(PlaybackTable& table, int seconds, int runs);
/// The same at the end of `driftSeconds` with a sender whose clock runs 1000 ppm fast.
void measureDrift(PlaybackTable& table, int driftSeconds, int runs);
/// This player alone with a sender whose clock runs 100 ppm fast: every ten seconds a line "seconds
/// lag_ms memory_kb longest_gap_ms" in `file`. Whether it was never late for long.
bool recordDrift(int minutes, const QString& way, const QString& file);
