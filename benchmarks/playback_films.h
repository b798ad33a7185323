// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Films with moving content, made by ffmpeg when first asked for and kept in a temporary folder.
/// What cannot be made ends the program.
namespace PlaybackFilms
{

/// 1080p60 H.264 of 12 Mbit/s. More than a minute is the first minute again and again.
QString h264(int seconds);
/// 1080p30 HEVC of 8 Mbit/s.
QString hevc(int seconds);
/// 2160p30 HEVC of 20 Mbit/s; making it takes its time.
QString uhd(int seconds);

} // namespace PlaybackFilms
