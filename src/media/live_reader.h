// SPDX-License-Identifier: MIT
#pragma once

#include "media/media_packet.h"

#include <QtGlobal>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

class FFmpegSession;

/// Takes the packets of a live source as soon as they arrive, in a thread of its own, so that it is
/// known how far the picture is behind. What nobody takes in time is left out from the oldest on,
/// up to a key picture. Made and used by one thread; nobody else reads the session meanwhile.
class LiveReader
{
public:
    /// Told of every packet that arrives, of sound as well; by the reading thread.
    using Listener = std::function<void(const AVPacket&)>;

    /// `session` is open and outlives this.
    LiveReader(FFmpegSession& session, Listener listener);
    /// Interrupts the session, and waits for what is being read.
    ~LiveReader();
    LiveReader(const LiveReader&) = delete;
    LiveReader& operator=(const LiveReader&) = delete;

    /// The next packet of the picture; null when none comes in `waitUs` microseconds or the source
    /// has ended.
    MediaPacket take(qint64 waitUs);
    /// When the packet taken last has arrived, in av_gettime_relative()'s microseconds.
    qint64 arrival() const { return m_arrival; }
    /// Whether there are no more packets, and none will come.
    bool hasEnded() const;
    /// Whether it has ended because it has had more than one source gets.
    bool isOverLimit() const;
    /// Whether nothing of the picture waits to be taken.
    bool isEmpty() const;
    /// The decode time stamp of the packet that has arrived last, in microseconds.
    std::optional<qint64> newestUs() const;
    /// Leaves out what comes before the newest key picture that waits; how many packets that were.
    int skipToNewestKey();
    /// Packets left out because nobody took them in time, since the last call.
    int takeLost();

private:
    void run();
    bool isPause(int result);
    void keep(MediaPacket packet);
    void makeRoom();

    FFmpegSession& m_session;
    const Listener m_listener;
    mutable std::mutex m_mutex; // guards what follows
    std::condition_variable m_arrived;
    struct Arrived {
        MediaPacket packet;
        qint64 at;
    };
    std::deque<Arrived> m_packets;
    qint64 m_kept = 0; // bytes in m_packets
    std::optional<qint64> m_newest;
    int m_lost = 0;
    bool m_awaitsKey = false;
    bool m_hasEnded = false;
    bool m_isOverLimit = false;
    bool m_isStopping = false;

    qint64 m_arrival = 0;      // only of who takes
    qint64 m_failingSince = 0; // microseconds; only run() and what it calls
    std::thread m_thread;
};
