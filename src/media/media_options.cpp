// SPDX-License-Identifier: MIT
#include "media/media_options.h"

#include "common/limits.h"

extern "C" {
#include <libavutil/dict.h>
}

#include <QByteArray>

#include <algorithm>
#include <iterator>

namespace MediaOptions
{
namespace
{

/// A kind of address on the network, and the protocols that it needs: no others are opened for it.
struct Way {
    const char* scheme;
    const char* protocols;
    bool fromBoxes; ///< whether boxes serve by it
};

// What tunnels through HTTP is missing: FFmpeg would follow redirects and use the environment's
// proxy in there, whatever it is told.
constexpr Way ways[] = {
    {"http", "http,tcp", true}, {"https", "https,tls,tcp", true},
    {"rtsp", "tcp", true},      {"rtsps", "tls,tcp", true},
    {"rtmp", "rtmp,tcp", true}, {"rtmps", "rtmps,tls,tcp", true},
    {"srt", "srt", true},       {"udp", "udp", true},
    {"rtp", "rtp,udp", true},   {"tcp", "tcp", true},
    {"rist", "rist", false},    {"mmst", "mmst,tcp", false},
};

/// What playlists of a server need, besides.
const QByteArray playlistProtocols = QByteArrayLiteral("http,https,tls,tcp,crypto");

/// Formats that carry their pictures in themselves. Everything else that FFmpeg knows may name
/// files and servers to go on with, or is met by nobody.
const QByteArray plainFormats =
    QByteArrayLiteral("mov,matroska,avi,flv,live_flv,mpegts,mpeg,mpegvideo,h264,hevc,obu,m4v,mjpeg,"
                      "mpjpeg,asf,rm,ogg,mxf,ivf");
const QByteArray streamFormats = plainFormats + QByteArrayLiteral(",rtsp,rtp");
const QByteArray playlistFormats = streamFormats + QByteArrayLiteral(",hls,aac,mp3,ac3,webvtt");
const QByteArray fileFormats =
    plainFormats +
    QByteArrayLiteral(",gif,apng,png_pipe,jpeg_pipe,bmp_pipe,webp_pipe,tiff_pipe,mp3,flac,wav");

/// The part before the colon, in lower case; empty when `url` is a plain path. One letter is a
/// drive, not a protocol.
QString schemeOf(const QString& url)
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

const Way* wayOf(const QString& url)
{
    const QString scheme = schemeOf(url);
    const auto* found = std::find_if(std::begin(ways), std::end(ways), [&](const Way& way) {
        return scheme == QLatin1String(way.scheme);
    });
    return found == std::end(ways) ? nullptr : found;
}

void allow(AVDictionary** options, const QByteArray& protocols, const QByteArray& formats)
{
    av_dict_set(options, "protocol_whitelist", protocols.constData(), 0);
    av_dict_set(options, "format_whitelist", formats.constData(), 0);
}

/// A stream is shown as soon as it can be decoded. How many pictures a second it has is seen when
/// they come: FFmpeg would look at twenty of them first.
void fillQuick(AVDictionary** options, qint64 lookUs)
{
    av_dict_set(options, "fpsprobesize", "0", 0);
    av_dict_set_int(options, "analyzeduration", lookUs, 0);
}

void fillUsual(AVDictionary** options)
{
    av_dict_set(options, "buffer_size", "8192000", 0);
    av_dict_set(options, "rtsp_transport", "tcp", 0);
    av_dict_set(options, "stimeout", "3000000", 0);
    av_dict_set(options, "max_delay", "1000000", 0);
    av_dict_set(options, "threads", "auto", 0);
    av_dict_set_int(options, "max_streams", Limits::MediaStreams, 0);
    av_dict_set(options, "probesize", "5000000", 0);
}

} // namespace

bool isLocalFile(const QString& url)
{
    const QString scheme = schemeOf(url);
    return scheme.isEmpty() || scheme == QLatin1String("file");
}

bool isRtsp(const QString& url)
{
    const QString scheme = schemeOf(url);
    return scheme == QLatin1String("rtsp") || scheme == QLatin1String("rtsps");
}

bool fill(AVDictionary** options, const QString& url, Origin origin, qint64 lookUs)
{
    if (isLocalFile(url)) {
        if (origin != Origin::Operator)
            return false;
        fillUsual(options);
        allow(options, QByteArrayLiteral("file"), fileFormats);
        return true;
    }
    const Way* way = wayOf(url);
    if (!way || (origin == Origin::Box && !way->fromBoxes))
        return false;
    fillUsual(options);
    fillQuick(options, lookUs);
    const bool isHttp = qstrncmp(way->scheme, "http", 4) == 0;
    if (origin == Origin::Operator && isHttp)
        allow(options, playlistProtocols, playlistFormats);
    else
        allow(options, way->protocols, streamFormats);
    // Every piece of a playlist is opened anew, where it is looked at who has it.
    av_dict_set(options, "http_persistent", "0", 0);
    av_dict_set(options, "http_multiple", "0", 0);
    // "stimeout" has had no effect since FFmpeg 5: RTSP calls it "timeout" now, everything else
    // that waits for the network listens to "rw_timeout".
    av_dict_set_int(options, isRtsp(url) ? "timeout" : "rw_timeout", SilenceLimitUs, 0);
    return true;
}

} // namespace MediaOptions
