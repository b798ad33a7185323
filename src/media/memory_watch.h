// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Looks on, from a thread of its own, at how much memory this process takes more since a source is
/// dealt with: many pieces, each within the limits, add up while FFmpeg asks nobody. Over the limit
/// FFmpeg gets no larger pieces any more, until this goes.
class MemoryWatch
{
public:
    explicit MemoryWatch(qint64 limit);
    ~MemoryWatch();
    MemoryWatch(const MemoryWatch&) = delete;
    MemoryWatch& operator=(const MemoryWatch&) = delete;

    /// Any thread may ask and set.
    void setLimit(qint64 bytes) { m_limit = bytes; }
    bool isOver() const { return m_isOver; }

private:
    void look();

    std::atomic<qint64> m_limit;
    std::atomic<bool> m_isOver{false};
    std::mutex m_mutex; // guards m_isEnding
    std::condition_variable m_wake;
    bool m_isEnding = false;
    std::thread m_thread;
};
