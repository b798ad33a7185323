// SPDX-License-Identifier: MIT
#pragma once

#include "common/limits.h"

#include <QHash>
#include <QString>

/// How much may be written into the logs: a good deal at once, little for long, so that nobody on
/// the network fills them. Times are milliseconds of a clock that only goes forward.
class LogBudget
{
public:
    struct Verdict {
        bool mayWrite = false;
        bool isFirstLeftOut = false; ///< of a row of records that are left out
        int leftOut = 0;             ///< before this one, which goes on
    };

    /// Whether `bytes` may be written into the log of `key` at `now`.
    Verdict take(const QString& key, qint64 bytes, qint64 now);

private:
    struct Account {
        qint64 spent = 0;
        qint64 at = 0;
        int leftOut = 0;

        void refill(qint64 now, qint64 bytesPerMinute);
    };

    bool hasRoom(const Account& account, qint64 burst, qint64 bytes) const;
    void forgetSilent(qint64 now);

    QHash<QString, Account> m_accounts; ///< by key
    Account m_all;
};
