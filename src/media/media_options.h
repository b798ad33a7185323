// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

struct AVDictionary;

/// What a source may be and how it is opened. Who named its address decides which of FFmpeg's
/// protocols and formats may be used; nothing that the source says widens them.
namespace MediaOptions
{

/// Who named the address of a source.
enum class Origin {
    Operator, ///< a file here, or an address on the network, with playlists of that server
    Box,      ///< a stream or a recording on the network; never a file or a list of others
};

/// How long a silent source is waited for, in microseconds: while connecting, and for each read.
constexpr qint64 SilenceLimitUs = 3000000;

/// Whether `url` is a path on this computer, or a "file:" address.
bool isLocalFile(const QString& url);

/// Whether `url` is opened through RTSP.
bool isRtsp(const QString& url);

/// How much of a stream is looked at before it is opened, in microseconds: a stream may have
/// promised sound that never comes. The long look is for one that was joined in between two key
/// pictures, where the short one has not found out how large its pictures are.
constexpr qint64 ShortLookUs = 1000000;
constexpr qint64 LongLookUs = 10000000;

/// Adds the entries for opening `url` to `options`, which the caller owns and frees. False, with
/// nothing added, when a source of this origin is not opened at all.
bool fill(AVDictionary** options, const QString& url, Origin origin, qint64 lookUs = ShortLookUs);

} // namespace MediaOptions
