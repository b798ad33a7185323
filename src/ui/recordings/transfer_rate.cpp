// SPDX-License-Identifier: MIT
#include "ui/recordings/transfer_rate.h"

namespace
{

constexpr qint64 spanMs = 5000;
/// What comes within less says more about the blocks in which it comes.
constexpr qint64 leastMs = 800;

} // namespace

void TransferRate::note(qint64 bytes)
{
    if (!m_clock.isValid())
        m_clock.start();
    if (!m_marks.isEmpty() && bytes < m_marks.last().bytes)
        reset();
    m_marks.enqueue({m_clock.elapsed(), bytes});
    while (m_marks.size() > 2 && m_marks.last().ms - m_marks.at(1).ms >= spanMs)
        m_marks.dequeue();
}

qint64 TransferRate::perSecond() const
{
    if (m_marks.size() < 2)
        return 0;
    const qint64 ms = m_marks.last().ms - m_marks.first().ms;
    return ms < leastMs ? 0 : (m_marks.last().bytes - m_marks.first().bytes) * 1000 / ms;
}
