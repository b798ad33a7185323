// SPDX-License-Identifier: MIT
#include "media/media_options.h"

extern "C" {
#include <libavutil/dict.h>
}

namespace MediaOptions
{
namespace
{

/// The part before the colon, in lower case; empty when `url` is a plain path. One letter is a
/// drive, not a protocol.
QString scheme(const QString& url)
{
    const int colon = url.indexOf(QLatin1Char(':'));
    if (colon < 2)
        return {};
    for (int n = 0; n < colon; ++n) {
        const QChar c = url.at(n);
        const bool isAllowed =
            c.unicode() < 128 && (c.isLetterOrNumber() || c == QLatin1Char('+') ||
                                  c == QLatin1Char('-') || c == QLatin1Char('.'));
        if (!isAllowed)
            return {};
    }
    return url.left(colon).toLower();
}

bool isRtsp(const QString& scheme)
{
    return scheme == QLatin1String("rtsp") || scheme == QLatin1String("rtsps");
}

} // namespace

bool isLocalFile(const QString& url)
{
    const QString name = scheme(url);
    return name.isEmpty() || name == QLatin1String("file");
}

void fill(AVDictionary** options, const QString& url)
{
    av_dict_set(options, "buffer_size", "8192000", 0);
    av_dict_set(options, "rtsp_transport", "tcp", 0);
    av_dict_set(options, "stimeout", "3000000", 0);
    av_dict_set(options, "max_delay", "1000000", 0);
    av_dict_set(options, "threads", "auto", 0);
    if (isLocalFile(url)) {
        av_dict_set(options, "protocol_whitelist", "file,crypto,data", 0);
        return;
    }
    // What plays over the network may refer to more of the network, as playlists do, but to no file
    // here; anything else that FFmpeg calls a protocol is not opened at all.
    av_dict_set(options, "protocol_whitelist",
                "http,https,httpproxy,tls,tcp,udp,rtp,srtp,rtsp,rtmp,rtmps,rtmpt,rtmpts,ffrtmphttp,"
                "mmsh,mmst,srt,rist,crypto",
                0);
    // "stimeout" has had no effect since FFmpeg 5: RTSP calls it "timeout" now, everything else
    // that waits for the network listens to "rw_timeout".
    av_dict_set_int(options, isRtsp(scheme(url)) ? "timeout" : "rw_timeout", SilenceLimitUs, 0);
}

} // namespace MediaOptions
