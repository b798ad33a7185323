// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>

/// When an address that answers pings, and is no box that anybody knows, is asked again what it is:
/// the less often the longer it has been none, as most of a network are printers and cameras.
class ProbePlan
{
public:
    /// Milliseconds between the first two probes of an address, doubled each time.
    static constexpr qint64 ShortestPauseMs = 2000;
    /// The longest pause: so long at most a box stays unseen that took a stranger's address.
    static constexpr qint64 LongestPauseMs = 45000;
    /// Milliseconds of silence after which whoever answers counts as somebody new.
    static constexpr qint64 ForgetMs = 120000;

    /// `ip` has answered a ping at `now`, in milliseconds of a clock that only goes forward. True
    /// when it is to be probed now.
    bool isDue(const QString& ip, qint64 now);
    /// It is filed, or nobody's any more.
    void forget(const QString& ip) { m_strangers.remove(ip); }
    int size() const { return m_strangers.size(); }

private:
    void forgetSilent(qint64 now);

    struct Stranger {
        qint64 heard = 0;
        qint64 next = 0; ///< probe
        qint64 pause = ShortestPauseMs;
    };
    QHash<QString, Stranger> m_strangers;
    qint64 m_nextForgetting = 0;
};
