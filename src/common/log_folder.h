// SPDX-License-Identifier: MIT
#pragma once

#include "common/limits.h"

#include <QString>

#include <atomic>
#include <mutex>

/// What the folder of logs may hold, and what it leaves of its disk.
struct LogBounds {
    qint64 fileBytes = Limits::LogFileBytes;
    qint64 folderBytes = Limits::LogFolderBytes;
    int days = Limits::LogDays;
    qint64 reserveBytes = Limits::LogReserveBytes;
    int reservePercent = Limits::LogReservePercent;
};

/// The folder of logs: readable by its owner only, its files neither too old nor too large nor too
/// many, and its disk never filled. Used by the threads that write logs, each a file of its own at
/// a time; never by the window's, which does not wait for disks.
class LogFolder
{
public:
    explicit LogFolder(LogBounds bounds = LogBounds()) : m_bounds(bounds) {}

    /// Only while nobody appends.
    void setBounds(const LogBounds& bounds) { m_bounds = bounds; }

    /// Appends a record to today's file of `key`, whose name ends with `ending` and ".txt". What
    /// finds no room is left out, counted, and said in a record once there is room again.
    void append(const QString& key, const QString& ending, const QString& record);
    /// Looks after the folder and its disk now; append() does so by itself, now and then.
    void look();

private:
    void lookNowAndThen();
    bool hasRoom(const QString& folder) const;
    void noteRoom(bool hasRoom);
    void tidy(const QString& folder) const;
    void rotate(const QString& path, qint64 more) const;

    LogBounds m_bounds;
    std::mutex m_looking;
    qint64 m_nextTidying = 0; // guarded by m_looking; of a clock that only goes forward
    std::atomic<qint64> m_nextLook{0};
    std::atomic<qint64> m_unlooked{0}; // bytes written since the last look
    std::atomic<bool> m_hasRoom{true};
    std::atomic<bool> m_isWritable{true};
    std::atomic<int> m_leftOut{0};
};
