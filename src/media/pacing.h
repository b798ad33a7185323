// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// When the next picture is due: the decode time stamps of one source against one start time.
/// All times in microseconds.
class Pacing
{
public:
    /// The start time; everything that has been due since then is due at once.
    void start(qint64 now) { m_start = now; }
    /// A live source is never waited for longer than a moment, whatever its stamps say.
    void setLive(bool live) { m_live = live; }

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
    bool m_live = false;
};
