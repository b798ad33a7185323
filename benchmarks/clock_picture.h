// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

/// Pictures that carry the time at which they were made, as a row of black and white blocks with a
/// check sum, so that what a player shows on the screen tells how old it is.
namespace ClockPicture
{

constexpr int Width = 640;
constexpr int Height = 360;

/// The computer's time since its start, the same in every process.
qint64 nowMs();
/// A raw yuv420p picture of Width x Height that carries `ms`; the rest of it moves with `number`
/// and is bright everywhere.
QByteArray make(qint64 ms, int number);
/// The code in a row of a shown picture, cut through its blocks from the left edge to the right.
/// Nothing when there is no code or it is damaged.
std::optional<int> read(const QImage& row);
/// How long ago the picture with this code was made.
int ageMs(int code, qint64 now);

} // namespace ClockPicture
