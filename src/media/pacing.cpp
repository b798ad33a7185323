// SPDX-License-Identifier: MIT
#include "media/pacing.h"

namespace
{

constexpr qint64 Second = 1000000;
/// Stamps are untrusted: differences of smaller ones do not overflow.
constexpr qint64 LargestStamp = Q_INT64_C(1) << 60;
constexpr qint64 JumpBack = Second / 5;
/// A file may be a slide show; a live source that leaves out more has begun again.
constexpr qint64 JumpAhead = 60 * Second;
constexpr qint64 LiveJumpAhead = 2 * Second;

} // namespace

bool Pacing::isJump(qint64 stamp) const
{
    return stamp < m_last - JumpBack || stamp > m_last + (m_live ? LiveJumpAhead : JumpAhead);
}

qint64 Pacing::waitAfter(qint64 stamp, qint64 now)
{
    if (stamp < -LargestStamp || stamp > LargestStamp)
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
