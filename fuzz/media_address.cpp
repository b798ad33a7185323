// SPDX-License-Identifier: MIT
// Addresses of streams and recordings: what FFmpeg may open for them.
#include "fuzz/fuzz.h"
#include "media/media_options.h"

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/dict.h>
}

#include <QStringList>

namespace
{

using MediaOptions::Origin;

QStringList listed(const AVDictionary* options, const char* name)
{
    const AVDictionaryEntry* entry = av_dict_get(options, name, nullptr, 0);
    return QString::fromUtf8(entry ? entry->value : "").split(QLatin1Char(','), Qt::SkipEmptyParts);
}

void requireBounds(const QString& url, Origin origin)
{
    AVDictionary* options = nullptr;
    const bool isOpened = MediaOptions::fill(&options, url, origin);
    const QStringList protocols = listed(options, "protocol_whitelist");
    const QStringList formats = listed(options, "format_whitelist");
    av_dict_free(&options);
    REQUIRE(isOpened != protocols.isEmpty() && isOpened != formats.isEmpty());
    // A file only for the operator, and nothing else with it.
    const bool isFile = isOpened && MediaOptions::isLocalFile(url);
    REQUIRE(protocols.contains(QStringLiteral("file")) == isFile);
    REQUIRE(!isFile || (origin == Origin::Operator && protocols.size() == 1));
    for (const char* other : {"pipe", "fd", "data", "concat", "concatf", "subfile", "cache",
                              "async", "tee", "unix", "gopher", "ftp"})
        REQUIRE(!protocols.contains(QLatin1String(other)));
    for (const char* other : {"concat", "sdp", "dash", "image2", "lavfi", "tty"})
        REQUIRE(!formats.contains(QLatin1String(other)));
    REQUIRE(origin == Origin::Operator || !formats.contains(QStringLiteral("hls")));
    // FFmpeg reads the address as the same kind, or opens nothing.
    const char* protocol = avio_find_protocol_name(url.toUtf8().constData());
    REQUIRE(!isOpened || !protocol || isFile == (qstrcmp(protocol, "file") == 0) ||
            !protocols.contains(QLatin1String(protocol)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString url = textOf(Input(data, size).rest());
    requireBounds(url, Origin::Operator);
    requireBounds(url, Origin::Box);
    return 0;
}
