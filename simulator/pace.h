// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/http_connection.h"

#include <QElapsedTimer>

#include <algorithm>

namespace sim
{

/// Keeps a transfer to a number of bytes a second, as a port does: what a busy computer has missed
/// for a moment comes right behind, so that the rate does not depend on how busy it is.
class Pace
{
public:
    explicit Pace(qint64 bytesPerSecond) : m_bytesPerSecond(bytesPerSecond) { m_clock.start(); }

    size_t pieceSize(size_t wanted) const
    {
        return m_bytesPerSecond <= 0 ? wanted
                                     : std::min(wanted, static_cast<size_t>(std::max<qint64>(
                                                            1, m_bytesPerSecond / perSecond)));
    }

    /// False when the connection has ended meanwhile.
    bool after(qint64 bytes)
    {
        if (m_bytesPerSecond <= 0)
            return true;
        const qint64 now = m_clock.nsecsElapsed();
        m_dueNs = std::max(m_dueNs, now - mostCatchUpNs) +
                  qint64(double(bytes) / double(m_bytesPerSecond) * 1e9);
        const qint64 ms = (m_dueNs - now) / 1000000;
        return ms < 1 || HttpConnection::current()->wait(static_cast<int>(ms));
    }

private:
    static constexpr qint64 perSecond = 20; ///< pieces
    static constexpr qint64 mostCatchUpNs = 200 * 1000000;

    qint64 m_bytesPerSecond;
    QElapsedTimer m_clock;
    qint64 m_dueNs = 0; ///< when all that has passed so far has taken its time
};

} // namespace sim
