// SPDX-License-Identifier: MIT
#include "common/log_budget.h"

#include <utility>

namespace
{

constexpr int mostAccounts = 8192;
constexpr qint64 minuteMs = 60000;

} // namespace

void LogBudget::Account::refill(qint64 now, qint64 bytesPerMinute)
{
    const qint64 given = (now - at) * bytesPerMinute / minuteMs;
    if (given <= 0)
        return;
    spent = qMax<qint64>(0, spent - given);
    at = now;
}

/// A log that was shut opens again when there is room for more than the next record: it would be
/// said for each of them.
bool LogBudget::hasRoom(const Account& account, qint64 burst, qint64 bytes) const
{
    return account.spent + bytes <= (account.leftOut > 0 ? burst * 3 / 4 : burst);
}

void LogBudget::forgetSilent(qint64 now)
{
    for (auto it = m_accounts.begin(); it != m_accounts.end();) {
        it->refill(now, Limits::LogBytesPerMinute);
        it = it->spent == 0 && it->leftOut == 0 ? m_accounts.erase(it) : std::next(it);
    }
    if (m_accounts.size() >= mostAccounts)
        m_accounts.clear();
}

LogBudget::Verdict LogBudget::take(const QString& key, qint64 bytes, qint64 now)
{
    if (m_accounts.size() >= mostAccounts && !m_accounts.contains(key))
        forgetSilent(now);
    Account& own = m_accounts[key];
    own.refill(now, Limits::LogBytesPerMinute);
    m_all.refill(now, Limits::AllLogsBytesPerMinute);
    const bool hasAll = hasRoom(m_all, Limits::AllLogsBurstBytes, bytes);
    if (!hasAll)
        ++m_all.leftOut;
    if (!hasAll || !hasRoom(own, Limits::LogBurstBytes, bytes))
        return {false, own.leftOut++ == 0, 0};
    own.spent += bytes;
    m_all.spent += bytes;
    m_all.leftOut = 0;
    return {true, false, std::exchange(own.leftOut, 0)};
}
