// SPDX-License-Identifier: MIT
#pragma once

#include "media/media_options.h"
#include "media/memory_watch.h"

#include <QByteArray>

#include <functional>
#include <vector>

struct AVDictionary;
struct AVFormatContext;
struct AVIOContext;

/// Everything that FFmpeg opens and waits for on behalf of one source passes here: so it gets
/// nothing from elsewhere, and no more than the limits. Belongs to the session's thread.
class SourceGate
{
public:
    /// `isInterrupted` is asked several times a second while FFmpeg waits; it must be fast.
    explicit SourceGate(std::function<bool()> isInterrupted);
    SourceGate(const SourceGate&) = delete;
    SourceGate& operator=(const SourceGate&) = delete;

    /// To be called before `context` opens `url`; this outlives it. The clock for opening starts.
    void guard(AVFormatContext* context, const QString& url, MediaOptions::Origin origin);
    /// What follows decodes: pictures may cost more than headers.
    void setHeaderRead();
    /// FFmpeg has given up opening, and released what it had.
    void setFailed() { m_lists.clear(); }
    /// From now on there is no limit to how long it takes, except for what setReading() says.
    void setOpened() { m_openLimit = 0; }
    /// A read begins; one that takes much longer than the pieces of a playlist is given up.
    void setReading();
    /// Whether the source has had too much, and gets no more.
    bool isOverLimit();

private:
    static int interrupted(void* gate);
    static int open(AVFormatContext* context, AVIOContext** io, const char* url, int flags,
                    AVDictionary** options);
    static int close(AVFormatContext* context, AVIOContext* io);

    bool mayOpen(const char* url) const;
    /// The limit that is exceeded, in plain words; null when none is.
    const char* exceeded() const;
    void watchPlaylist(AVIOContext* io);

    const std::function<bool()> m_isInterrupted;
    AVFormatContext* m_context = nullptr;
    int (*m_openAsEver)(AVFormatContext*, AVIOContext**, const char*, int,
                        AVDictionary**) = nullptr;
    int (*m_closeAsEver)(AVFormatContext*, AVIOContext*) = nullptr;
    MediaOptions::Origin m_origin = MediaOptions::Origin::Box;
    QByteArray m_host;
    bool m_isRtsp = false;
    bool m_hasOpened = false;    // its own address
    bool m_isConnecting = false; // until the server's headers are read
    int m_looks = 0;             // how often FFmpeg has looked for more of them
    bool m_isOver = false;       // it has had too much, and gets no more
    qint64 m_openLimit = 0;      // when opening is given up, microseconds; 0: not opening
    qint64 m_readLimit = 0;      // when that is given up, microseconds; 0: never
    bool m_isGivenUp = false;
    MemoryWatch m_memory;
    std::vector<AVIOContext*> m_lists; // playlists that are being read
    qint64 m_listBytes = 0;            // of those that were read while opening
};
