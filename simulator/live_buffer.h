// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <condition_variable>
#include <deque>
#include <mutex>

namespace sim
{

/// The newest seconds of an MPEG-TS stream, written by one thread and read by any number of others,
/// each at its own speed; a reader that falls too far behind goes on with the oldest piece there
/// is.
class LiveBuffer
{
public:
    void append(const QByteArray& bytes);
    /// From now on readers are told that the stream is over.
    void end();
    /// Where a new reader begins: the newest key picture, or what comes next when there is none.
    quint64 start() const;
    /// The first piece from number `next` on, and makes `next` the number after it; waits up to
    /// 200 ms for one, then gives an empty piece. False when the stream has ended.
    bool take(quint64* next, QByteArray* piece);

private:
    void push(const QByteArray& piece);

    mutable std::mutex m_mutex;
    std::condition_variable m_arrived;
    // All guarded by m_mutex.
    std::deque<QByteArray> m_pieces;
    quint64 m_first = 0; // number of the first piece
    quint64 m_key = 0;   // number of the piece that begins with the newest key picture
    bool m_hasKey = false;
    QByteArray m_rest; // begin of a packet that has not come whole yet
    bool m_ended = false;
};

} // namespace sim
