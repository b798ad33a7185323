// SPDX-License-Identifier: MIT
#include "simulator/live_buffer.h"

#include <algorithm>
#include <chrono>

namespace sim
{
namespace
{

constexpr size_t maxPieces = 400; // some seconds
constexpr std::chrono::milliseconds longestWait(200);
constexpr int packetSize = 188;
constexpr int videoPid = 0x100; // FFmpeg's number for the first stream

int pidOf(const char* packet)
{
    return (uchar(packet[1]) & 0x1f) << 8 | uchar(packet[2]);
}

/// Whether a key picture begins in this packet, by its "random access" mark.
bool beginsKeyPicture(const char* packet)
{
    const bool hasField = (uchar(packet[3]) & 0x20) != 0 && packet[4] != 0;
    return pidOf(packet) == videoPid && hasField && (uchar(packet[5]) & 0x40) != 0;
}

/// Offset of the programme table just before the first key picture in `packets`, or -1. A viewer
/// that begins there knows the programme before the picture comes.
int findKey(const QByteArray& packets)
{
    int table = -1;
    for (int at = 0; at < packets.size(); at += packetSize) {
        const char* const packet = packets.constData() + at;
        if (pidOf(packet) == 0)
            table = at;
        if (beginsKeyPicture(packet))
            return table >= 0 ? table : at;
    }
    return -1;
}

} // namespace

void LiveBuffer::append(const QByteArray& bytes)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_rest += bytes;
    const int whole = m_rest.size() - m_rest.size() % packetSize;
    const QByteArray packets = m_rest.left(whole);
    m_rest.remove(0, whole);
    const int key = findKey(packets);
    if (key >= 0) {
        push(packets.left(key));
        m_key = m_first + m_pieces.size();
        m_hasKey = true;
    }
    push(packets.mid(std::max(0, key)));
    m_arrived.notify_all();
}

void LiveBuffer::push(const QByteArray& piece)
{
    if (piece.isEmpty())
        return;
    m_pieces.push_back(piece);
    if (m_pieces.size() > maxPieces) {
        m_pieces.pop_front();
        ++m_first;
    }
}

void LiveBuffer::end()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ended = true;
    m_arrived.notify_all();
}

quint64 LiveBuffer::start() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_hasKey ? m_key : m_first + m_pieces.size();
}

bool LiveBuffer::take(quint64* next, QByteArray* piece)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    piece->clear();
    m_arrived.wait_for(lock, longestWait,
                       [&] { return m_ended || *next < m_first + m_pieces.size(); });
    if (m_ended)
        return false;
    *next = std::max(*next, m_first);
    if (*next < m_first + m_pieces.size()) {
        *piece = m_pieces[size_t(*next - m_first)];
        ++*next;
    }
    return true;
}

} // namespace sim
