// SPDX-License-Identifier: MIT
#include "media/source_gate.h"

#include "common/limit_log.h"
#include "common/limits.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/avstring.h>
#include <libavutil/opt.h>
#include <libavutil/time.h>
}

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace
{

/// A source that keeps dripping data without ever becoming playable is given up after this.
constexpr qint64 openLimitUs = 15000000;
/// As is one that has played: a playlist that has begun to count anew is never read on by FFmpeg,
/// which waits for the number that it had come to.
constexpr qint64 readLimitUs = 15000000;

/// Whether the time has come; 0 is no time.
bool isPast(qint64 limit)
{
    return limit != 0 && av_gettime_relative() > limit;
}

QByteArray hostOf(const char* url)
{
    // As FFmpeg will read it.
    std::array<char, 1024> host{};
    av_url_split(nullptr, 0, nullptr, 0, host.data(), int(host.size()), nullptr, nullptr, 0, url);
    return QByteArray(host.data()).toLower();
}

} // namespace

SourceGate::SourceGate(std::function<bool()> isInterrupted)
    : m_isInterrupted(std::move(isInterrupted)), m_memory(Limits::MediaHeaderBytes)
{
}

void SourceGate::guard(AVFormatContext* context, const QString& url, MediaOptions::Origin origin)
{
    m_context = context;
    m_origin = origin;
    m_isRtsp = MediaOptions::isRtsp(url);
    m_openLimit = av_gettime_relative() + openLimitUs;
    context->interrupt_callback = {&SourceGate::interrupted, this};
    if (MediaOptions::isLocalFile(url)) {
        m_host = QByteArrayLiteral("file");
        return;
    }
    m_host = hostOf(url.toUtf8().constData());
    context->opaque = this;
    m_openAsEver = context->io_open;
    m_closeAsEver = context->io_close2;
    context->io_open = &SourceGate::open;
    context->io_close2 = &SourceGate::close;
}

void SourceGate::setHeaderRead()
{
    m_memory.setLimit(Limits::MediaStoreBytes);
}

void SourceGate::setReading()
{
    m_readLimit = av_gettime_relative() + readLimitUs;
}

int SourceGate::interrupted(void* gate)
{
    auto* self = static_cast<SourceGate*>(gate);
    // An RTSP server may send its client to any other, and FFmpeg asks nobody. All it needs is the
    // connection that it is waiting for here, so it can have no further one.
    if (self->m_isRtsp && !self->m_hasOpened) {
        self->m_hasOpened = true;
        av_opt_set(self->m_context, "protocol_whitelist", "none", 0);
    }
    if (self->m_isConnecting)
        ++self->m_looks;
    // FFmpeg hands on what it has first; then it is over.
    self->m_isGivenUp = self->m_isGivenUp || isPast(self->m_readLimit);
    return self->m_isInterrupted() || self->isOverLimit() || self->m_isGivenUp ||
           isPast(self->m_openLimit);
}

int SourceGate::open(AVFormatContext* context, AVIOContext** io, const char* url, int flags,
                     AVDictionary** options)
{
    auto* self = static_cast<SourceGate*>(context->opaque);
    if (!self->mayOpen(url))
        return AVERROR(EACCES);
    self->m_hasOpened = true;
    AVDictionary* none = nullptr;
    AVDictionary** all = options ? options : &none;
    av_dict_set(all, "max_redirects", "0", 0);
    // What is no address of a proxy means that there is none, whatever the environment says.
    av_dict_set(all, "http_proxy", "none", 0);
    self->m_looks = 0;
    self->m_isConnecting = true;
    const int result = self->m_openAsEver(context, io, url, flags, all);
    self->m_isConnecting = false;
    av_dict_free(&none);
    if (result >= 0 && self->m_origin == MediaOptions::Origin::Operator)
        self->watchPlaylist(*io);
    return result;
}

int SourceGate::close(AVFormatContext* context, AVIOContext* io)
{
    auto* self = static_cast<SourceGate*>(context->opaque);
    const auto list = std::find(self->m_lists.begin(), self->m_lists.end(), io);
    if (list != self->m_lists.end()) {
        if (self->m_openLimit != 0)
            self->m_listBytes += io->bytes_read;
        self->m_lists.erase(list);
    }
    return self->m_closeAsEver(context, io);
}

/// A playlist may name its own server again and nobody else: not this computer, not another box.
bool SourceGate::mayOpen(const char* url) const
{
    if (!m_hasOpened)
        return true;
    if (m_origin != MediaOptions::Origin::Operator)
        return false;
    const char* address = url;
    if (!av_strstart(url, "crypto+", &address))
        av_strstart(url, "crypto:", &address);
    return (av_strstart(address, "http://", nullptr) ||
            av_strstart(address, "https://", nullptr)) &&
           hostOf(address) == m_host;
}

/// FFmpeg keeps every line of a playlist, however many come.
void SourceGate::watchPlaylist(AVIOContext* io)
{
    static const QByteArray mark = QByteArrayLiteral("#EXTM3U");
    QByteArray begin(mark.size(), '\0');
    const int got = avio_read(io, reinterpret_cast<unsigned char*>(begin.data()), begin.size());
    if (avio_seek(io, 0, SEEK_SET) == 0 && got == begin.size() && begin == mark)
        m_lists.push_back(io);
}

const char* SourceGate::exceeded() const
{
    if (m_looks > Limits::MediaHeadLooks)
        return "headers of a media server";
    if (m_memory.isOver())
        return "memory for a source";
    qint64 opening = m_listBytes;
    for (const AVIOContext* list : m_lists) {
        if (list->bytes_read > Limits::PlaylistBytes)
            return "length of a playlist";
        opening += list->bytes_read;
    }
    return m_openLimit != 0 && opening > Limits::PlaylistsBytes ? "length of playlists" : nullptr;
}

bool SourceGate::isOverLimit()
{
    const char* what = exceeded();
    if (!what || m_isOver)
        return m_isOver;
    m_isOver = true;
    const QString who = QString::fromUtf8(m_host);
    QMetaObject::invokeMethod(
        qApp, [who, what] { limitReached(who, QString::fromLatin1(what)); }, Qt::QueuedConnection);
    return true;
}
