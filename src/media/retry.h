// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// When a source that is gone is opened again: after pauses that grow, as long as it does not play
/// for a while in between. All times in microseconds.
class Retry
{
public:
    /// Short enough for the picture to be back within five seconds of its stream, with the time
    /// that a connection to nobody takes.
    static constexpr qint64 FirstPauseUs = 250000;
    static constexpr qint64 LongestPauseUs = 1500000;
    /// A source that ends sooner than this after its first picture has not come back.
    static constexpr qint64 SteadyUs = 3000000;

    /// How long to wait before the next try.
    qint64 nextPause()
    {
        const qint64 pause = m_pause;
        m_pause = qMin(m_pause * 2, LongestPauseUs);
        return pause;
    }
    /// The source that has just broken off had played for that long.
    void noteBreak(qint64 played)
    {
        if (played >= SteadyUs)
            m_pause = FirstPauseUs;
    }

private:
    qint64 m_pause = FirstPauseUs;
};
