// SPDX-License-Identifier: MIT
#pragma once

#include <QSet>
#include <QString>

#include <mutex>

namespace sim
{

/// The file "plugged" of a run directory: the addresses that answer ping at present, one a line.
/// lan-fping reads it. Always whole: each version replaces the one before in one step. Its
/// functions may be called from any thread.
class PluggedFile
{
public:
    /// An empty path: no file is written.
    explicit PluggedFile(QString path);

    void set(const QString& address, bool reachable);
    /// Between the two, changes are only noted.
    void hold();
    void release();
    QString path() const { return m_path; }

private:
    void write();

    const QString m_path;
    std::mutex m_mutex;
    QSet<QString> m_addresses; // guarded by m_mutex
    bool m_isHeld = false;     // guarded by m_mutex
};

} // namespace sim
