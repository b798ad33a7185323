// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

/// What the event feed of the selected box says of its recording: a box that records sends the
/// running time, and ceases to when it has stopped, whoever did that, or lost its power.
class RecordWatch : public QObject
{
    Q_OBJECT

public:
    enum class Clock {
        Unknown, ///< not heard, and it may be that this box sends none
        Runs,
        Stopped, ///< this box does send it, and has ceased to
    };

    RecordWatch();

    /// The feed is that of the box at `ip` from now on.
    void pointAt(const QString& ip);
    /// Another box has the address by now.
    void forget(const QString& ip);
    /// A message of the feed; `ms` is the running time, or 0 when it carries none.
    void hear(qint64 ms);
    /// The connection is gone.
    void lose() { m_isAlive = false; }

    /// The box at `ip` has said that it records now, or that it has stopped: what its clock said
    /// before is no longer true, nor what is still under way.
    void noteStart(const QString& ip);
    void noteStop(const QString& ip);

    /// Unknown for every box but the selected one.
    Clock clock(const QString& ip) const { return ip == m_ip ? m_clock : Clock::Unknown; }
    /// Messages arrive.
    bool isAlive() const { return m_isAlive; }

signals:
    /// The clock of the box at `ip` has begun or ceased to run.
    void changed(const QString& ip);

private:
    void set(Clock clock);
    void listen();
    void noteSilence();

    QString m_ip;
    Clock m_clock = Clock::Unknown;
    bool m_isAlive = false;
    bool m_isStarting = false; ///< a start has been confirmed, its clock not been heard yet
    QSet<QString> m_tellers;   ///< boxes that have been heard to send their clock
    QTimer m_silence;
    int m_silentTurns = 0;
    QElapsedTimer m_sinceStop;
};
