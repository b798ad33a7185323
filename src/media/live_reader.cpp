// SPDX-License-Identifier: MIT
#include "media/live_reader.h"

#include "common/limits.h"
#include "crash/crash_handler.h"
#include "media/ffmpeg_session.h"

extern "C" {
#include <libavcodec/packet.h>
#include <libavutil/error.h>
#include <libavutil/time.h>
}

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace
{

/// A source may say once or twice that it has nothing, or nonsense, and go on.
constexpr qint64 failureLimitUs = 300000;
constexpr auto failurePause = std::chrono::milliseconds(10);

bool isKey(const AVPacket& packet)
{
    return (packet.flags & AV_PKT_FLAG_KEY) != 0;
}

} // namespace

LiveReader::LiveReader(FFmpegSession& session, Listener listener)
    : m_session(session), m_listener(std::move(listener)), m_thread([this] { run(); })
{
}

LiveReader::~LiveReader()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = true;
    }
    m_session.interrupt();
    m_arrived.notify_all();
    m_thread.join();
}

void LiveReader::run()
{
    CrashHandler::coverThread();
    for (;;) {
        MediaPacket packet(av_packet_alloc());
        const int result = packet ? m_session.read(*packet) : AVERROR(ENOMEM);
        if (result >= 0)
            m_listener(*packet);
        const bool isOver = m_session.isOverLimit();
        const bool goesOn = !isOver && (result >= 0 || isPause(result));
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!goesOn || m_isStopping) {
            m_hasEnded = true;
            m_isOverLimit = isOver;
            m_arrived.notify_all();
            return;
        }
        if (result >= 0) {
            m_failingSince = 0;
            keep(std::move(packet));
            m_arrived.notify_all();
        } else {
            m_arrived.wait_for(lock, failurePause, [this] { return m_isStopping; });
        }
    }
}

/// Whether that failure may be over in a moment.
bool LiveReader::isPause(int result)
{
    const qint64 now = av_gettime_relative();
    if (m_failingSince == 0)
        m_failingSince = now;
    const bool isLasting = m_session.isBroken(result) || result == AVERROR_EOF;
    return !isLasting && now - m_failingSince < failureLimitUs;
}

void LiveReader::keep(MediaPacket packet)
{
    if (!m_session.isVideo(*packet))
        return;
    if (const std::optional<qint64> stamp = m_session.pictures().stampUs(*packet))
        m_newest = stamp;
    if (m_awaitsKey && !isKey(*packet)) {
        ++m_lost;
        return;
    }
    m_awaitsKey = false;
    m_kept += packet->size;
    m_packets.push_back({std::move(packet), av_gettime_relative()});
    makeRoom();
}

void LiveReader::makeRoom()
{
    const auto isFull = [this] {
        return m_kept > Limits::MediaQueueBytes || m_packets.size() > Limits::MediaQueuePackets;
    };
    while (isFull()) {
        // From one key picture to the next: what is left can be shown.
        do {
            m_kept -= m_packets.front().packet->size;
            m_packets.pop_front();
            ++m_lost;
        } while (!m_packets.empty() && !isKey(*m_packets.front().packet));
        m_awaitsKey = m_packets.empty();
    }
}

MediaPacket LiveReader::take(qint64 waitUs)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_arrived.wait_for(lock, std::chrono::microseconds(waitUs),
                       [this] { return !m_packets.empty() || m_hasEnded; });
    if (m_packets.empty())
        return nullptr;
    MediaPacket packet = std::move(m_packets.front().packet);
    m_arrival = m_packets.front().at;
    m_packets.pop_front();
    m_kept -= packet->size;
    return packet;
}

int LiveReader::skipToNewestKey()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto newest = std::find_if(m_packets.rbegin(), m_packets.rend(),
                                     [](const Arrived& each) { return isKey(*each.packet); });
    if (newest == m_packets.rend())
        return 0;
    const int skipped = int(std::distance(newest, m_packets.rend())) - 1;
    for (int n = 0; n < skipped; ++n) {
        m_kept -= m_packets.front().packet->size;
        m_packets.pop_front();
    }
    return skipped;
}

bool LiveReader::hasEnded() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_hasEnded && m_packets.empty();
}

bool LiveReader::isOverLimit() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_isOverLimit;
}

bool LiveReader::isEmpty() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_packets.empty();
}

std::optional<qint64> LiveReader::newestUs() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_newest;
}

int LiveReader::takeLost()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_lost, 0);
}
