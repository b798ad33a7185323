// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// When the next picture of a source with an end is due: the decode time stamps against one start
/// time. All times in microseconds.
class Pacing
{
public:
    /// The start time; everything that has been due since then is due at once, except what is
    /// later than that by more than LongestDelayUs: then the film goes on from there at its pace.
    void start(qint64 now) { m_start = now; }
    static constexpr qint64 LongestDelayUs = 1000000;

    /// How long to wait at `now` after the picture stamped `stamp`; 0 when it is late or the stamp
    /// makes no sense. The source's first stamp counts as the start; when the stamps jump, because
    /// a source has begun again, they go on from where they were.
    qint64 waitAfter(qint64 stamp, qint64 now);

private:
    bool isJump(qint64 stamp) const;

    qint64 m_start = 0;
    qint64 m_base = 0; // the stamp that belongs to m_start
    qint64 m_last = 0;
    bool m_hasBase = false;
};

/// When a picture of a live source is shown: at once, except that pictures that arrive together are
/// shown one after the other as far as none gets late by it. Never waits because a source once had
/// a delay, nor because its clock is a fast one. All times in microseconds.
class LivePacing
{
public:
    /// A picture this far behind the newest that has arrived is late.
    static constexpr qint64 LateUs = 150000;

    /// How long to wait at `now` before showing the picture stamped `stamp`, which has arrived at
    /// `arrived`, while the newest that has arrived is stamped `newest`; 0 up to LateUs.
    qint64 waitBefore(qint64 stamp, qint64 newest, qint64 arrived, qint64 now);

private:
    void begin(qint64 stamp, qint64 due);

    bool m_hasBase = false;
    bool m_isCatchingUp = false; // until a picture is the newest one
    qint64 m_start = 0;          // when the picture stamped m_base is due
    qint64 m_base = 0;
    qint64 m_window = 0;     // when the delays of m_leastDelay began
    qint64 m_leastDelay = 0; // of all pictures since then, from their arrival until they were due
};
