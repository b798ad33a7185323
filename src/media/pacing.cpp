// SPDX-License-Identifier: MIT
#include "media/pacing.h"

#include <limits>

namespace
{

constexpr qint64 second = 1000000;
/// Stamps are untrusted: differences of smaller ones do not overflow.
constexpr qint64 largestStamp = Q_INT64_C(1) << 60;
constexpr qint64 jumpBack = second / 5;
/// A film may be a slide show.
constexpr qint64 jumpAhead = 60 * second;
/// A delay that nobody sees.
constexpr qint64 punctualUs = 10000;
/// How long pictures are looked at until what all of them have waited is taken off.
constexpr qint64 trimPeriod = second;

bool isSane(qint64 stamp)
{
    return stamp >= -largestStamp && stamp <= largestStamp;
}

} // namespace

bool Pacing::isJump(qint64 stamp) const
{
    return stamp < m_last - jumpBack || stamp > m_last + jumpAhead;
}

qint64 Pacing::waitAfter(qint64 stamp, qint64 now)
{
    if (!isSane(stamp))
        return 0;
    if (!m_hasBase) {
        m_hasBase = true;
        m_base = stamp;
    } else if (isJump(stamp)) {
        m_base += stamp - m_last;
    }
    m_last = stamp;
    const qint64 wait = (stamp - m_base) - (now - m_start);
    if (wait < -LongestDelayUs)
        m_start -= wait;
    return qMax<qint64>(0, wait);
}

void LivePacing::begin(qint64 stamp, qint64 due)
{
    m_hasBase = true;
    m_start = due;
    m_base = stamp;
    m_window = due;
    m_leastDelay = std::numeric_limits<qint64>::max();
}

qint64 LivePacing::waitBefore(qint64 stamp, qint64 newest, qint64 arrived, qint64 now)
{
    if (!isSane(stamp) || !isSane(newest))
        return 0;
    const qint64 lag = qMax<qint64>(0, newest - stamp);
    if (lag >= LateUs || !m_hasBase)
        m_isCatchingUp = true;
    else if (lag < punctualUs)
        m_isCatchingUp = false;
    const qint64 delay = m_start + (stamp - m_base) - arrived;
    // Whatever has brought it about, what comes next is due when it comes.
    if (m_isCatchingUp || delay > LateUs) {
        begin(stamp, now);
        return 0;
    }
    // Those that follow a late one keep their distance, as far as none gets late by it.
    if (delay < -punctualUs)
        begin(stamp, arrived);
    const qint64 due = m_start + (stamp - m_base);
    m_leastDelay = qMin(m_leastDelay, due - arrived);
    const qint64 wait = qBound<qint64>(0, due - now, LateUs - lag);
    if (now - m_window >= trimPeriod) {
        m_start -= qMax<qint64>(0, m_leastDelay);
        m_window = now;
        m_leastDelay = std::numeric_limits<qint64>::max();
    }
    return wait;
}
