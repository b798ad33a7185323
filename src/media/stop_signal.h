// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

/// Asks a thread to end, and wakes it from its rests. Any thread may use it.
class StopSignal
{
public:
    bool isRequested() const { return m_isRequested; }
    void request()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_isRequested = true;
        }
        m_wake.notify_all();
    }
    /// Waits that long, or until the end is asked for; not at all for nothing.
    void rest(qint64 microseconds)
    {
        if (microseconds <= 0)
            return;
        std::unique_lock<std::mutex> lock(m_mutex);
        m_wake.wait_for(lock, std::chrono::microseconds(microseconds),
                        [this] { return m_isRequested.load(); });
    }
    /// Does something that must not happen once the end is asked for, nor while it is.
    template <class Act> void unlessRequested(Act act)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_isRequested)
            act();
    }
    /// Forgets what was asked for; `act` sees nobody ask meanwhile.
    template <class Act> void clear(Act act)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isRequested = false;
        act();
    }

private:
    std::atomic<bool> m_isRequested{false};
    std::mutex m_mutex;
    std::condition_variable m_wake;
};
