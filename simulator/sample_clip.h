// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace sim
{

/// A short film for a recording that was never recorded, as "mov" or "mp4" by the suffix of
/// `name`. Made by FFmpeg when first asked for, kept until the process ends. Blocks the caller
/// for that time, about a second. Empty when FFmpeg fails. For any thread.
QString sampleClip(const QString& name);

/// Makes both now. A player waits three seconds for a box's first word, and FFmpeg may have to come
/// from a slow disk.
void makeSampleClips();

} // namespace sim
