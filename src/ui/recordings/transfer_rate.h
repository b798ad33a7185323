// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QQueue>

/// How fast something comes, over the last seconds.
class TransferRate
{
public:
    /// So many bytes have come so far; fewer than before is a new beginning.
    void note(qint64 bytes);
    void reset() { m_marks.clear(); }
    /// Bytes a second; 0 until it can be told.
    qint64 perSecond() const;

private:
    struct Mark {
        qint64 ms;
        qint64 bytes;
    };

    QElapsedTimer m_clock;
    QQueue<Mark> m_marks;
};
