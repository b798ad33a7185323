// SPDX-License-Identifier: MIT
#include "media/pacing.h"

namespace
{

constexpr qint64 second = 1000000;
/// Stamps are untrusted: differences of smaller ones do not overflow.
constexpr qint64 largestStamp = Q_INT64_C(1) << 60;
constexpr qint64 jumpBack = second / 5;
/// A file may be a slide show; a live source that leaves out more has begun again.
constexpr qint64 jumpAhead = 60 * second;
constexpr qint64 liveJumpAhead = 2 * second;

} // namespace

bool Pacing::isJump(qint64 stamp) const
{
    return stamp < m_last - jumpBack || stamp > m_last + (m_live ? liveJumpAhead : jumpAhead);
}

qint64 Pacing::waitAfter(qint64 stamp, qint64 now)
{
    if (stamp < -largestStamp || stamp > largestStamp)
        return 0;
    if (!m_hasBase) {
        m_hasBase = true;
        m_base = stamp;
    } else if (isJump(stamp)) {
        m_base += stamp - m_last;
    }
    m_last = stamp;
    return qMax<qint64>(0, (stamp - m_base) - (now - m_start));
}
