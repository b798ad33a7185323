// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class TreeModel;

/// How the upgrades of a set of boxes stand.
struct UpgradeCounts {
    int upgrading = 0;
    int timedOut = 0;
    int successful = 0;

    bool allEnded() const { return upgrading == timedOut + successful; }
};

/// The upgrades in progress: lets their boxes count down, says how many have come how far, and what
/// of the allowance of all batches has gone. Whoever has the clock calls tick() once a second.
class UpgradeCountdown
{
public:
    explicit UpgradeCountdown(TreeModel& devices);

    /// A batch begins; its allowance comes on top of what those under way have.
    void addBatch();
    bool isRunning() const { return m_running; }
    /// One second less for every box that is under way; one that has none left is timed out.
    void tick();
    void stop();

    /// The boxes of the group titled `group`, all when it is empty.
    UpgradeCounts counts(const QString& group = QString()) const;

    /// For a progress bar: seconds since the first batch, and what all of them are allowed.
    int progress() const { return m_progress; }
    int maximum() const { return m_maximum; }

private:
    TreeModel& m_devices;
    bool m_running = false;
    int m_progress = 0;
    int m_maximum = 0;
};
