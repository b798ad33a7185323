// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

/// The time of an upgrade: that of the computer, or one that a simulation lets run.
class UpgradeClock
{
public:
    UpgradeClock() = default;
    virtual ~UpgradeClock() = default;
    UpgradeClock(const UpgradeClock&) = delete;
    UpgradeClock& operator=(const UpgradeClock&) = delete;

    /// Milliseconds since some moment; never goes back.
    virtual qint64 ms() const = 0;
    virtual QDateTime date() const = 0;
    /// The length of an upgrade's second, in milliseconds. Its allowances are counted in it.
    virtual int tickMs() const = 0;
};
