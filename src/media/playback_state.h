// SPDX-License-Identifier: MIT
#pragma once

#include "media/figures_meter.h"
#include "media/shown_picture.h"

#include <atomic>
#include <mutex>

/// What a player's thread and the window tell each other while it plays. Any thread may use it.
class PlaybackState
{
public:
    /// When the source was first asked in vain, in av_gettime_relative()'s microseconds; 0 while
    /// pictures come.
    std::atomic<qint64> waitingSince{0};
    std::atomic<bool> isAtEnd{false};  ///< a source that has an end has been shown up to it
    std::atomic<int> dropped{0};       ///< pictures that were never handed out
    std::atomic<qint64> lagUs{-1};     ///< behind the newest that has arrived; -1: not live
    std::atomic<int> tries{0};         ///< to open it again since the last picture
    std::atomic<int> reconnections{0}; ///< tries that have succeeded
    std::atomic<bool> isSoundMeasured{false};
    FiguresMeter meter;

    void setArea(const ShownArea& area)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_area = area;
    }
    ShownArea area() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_area;
    }
    void setShown(ShownPicture picture)
    {
        // The one before goes after the lock.
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::swap(m_shown, picture);
    }
    ShownPicture shown() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_shown;
    }

private:
    mutable std::mutex m_mutex; // guards what follows
    ShownArea m_area;
    ShownPicture m_shown;
};
