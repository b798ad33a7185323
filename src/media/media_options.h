// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

struct AVDictionary;

/// What a source may be and how it is opened. The address may come from a box: it decides which of
/// FFmpeg's protocols may be used, and never widens them.
namespace MediaOptions
{

/// How long a silent source is waited for, in microseconds: while connecting, and for each read.
constexpr qint64 SilenceLimitUs = 3000000;

/// Whether `url` is a path on this computer, or a "file:" address.
bool isLocalFile(const QString& url);

/// Adds the entries for opening `url` to `options`, which the caller owns and frees.
void fill(AVDictionary** options, const QString& url);

} // namespace MediaOptions
