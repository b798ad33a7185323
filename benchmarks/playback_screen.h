// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>

#include <optional>

/// What stands on the screen, whoever put it there: a player's window of 1280x720 at its upper left
/// corner, on nothing else.
namespace PlaybackScreen
{

constexpr int Width = 1280;
constexpr int Height = 720;

/// Looks until there is a picture, or none any more; false when that does not come.
bool waitForPicture(bool shown);
/// The same for a ClockPicture.
bool waitForClock(bool shown);
/// The smallest rectangle around all that is bright.
QRect brightArea();
/// The code of the ClockPicture on the screen, as far as there is one to read.
std::optional<int> clockCode();
/// The display server's processor time in seconds, for a server on this computer.
double serverSeconds();

} // namespace PlaybackScreen
