// SPDX-License-Identifier: MIT
#include "device/probe_plan.h"

bool ProbePlan::isDue(const QString& ip, qint64 now)
{
    forgetSilent(now);
    const auto known = m_strangers.find(ip);
    if (known == m_strangers.end() || now - known->heard > ForgetMs) {
        m_strangers[ip] = {now, now + ShortestPauseMs, ShortestPauseMs};
        return true;
    }
    known->heard = now;
    if (now < known->next)
        return false;
    known->pause = qMin(known->pause * 2, LongestPauseMs);
    known->next = now + known->pause;
    return true;
}

/// Networks are swept for days, and addresses in them come and go.
void ProbePlan::forgetSilent(qint64 now)
{
    if (now < m_nextForgetting)
        return;
    m_nextForgetting = now + ForgetMs;
    for (auto it = m_strangers.begin(); it != m_strangers.end();) {
        if (now - it->heard > ForgetMs)
            it = m_strangers.erase(it);
        else
            ++it;
    }
}
