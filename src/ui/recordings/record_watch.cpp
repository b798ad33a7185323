// SPDX-License-Identifier: MIT
#include "ui/recordings/record_watch.h"

namespace
{

/// A running clock is heard several times a second. Silence is looked at twice: this program itself
/// may have been busy for a while, and hear what had come only after the first look.
constexpr int lookMs = 1500;
constexpr int silentLooks = 2;

/// What was sent before a stop may be heard for so long after it.
constexpr int echoMs = 1500;

} // namespace

RecordWatch::RecordWatch()
{
    m_silence.setInterval(lookMs);
    connect(&m_silence, &QTimer::timeout, this, &RecordWatch::noteSilence);
}

void RecordWatch::pointAt(const QString& ip)
{
    if (ip != m_ip) {
        m_ip = ip;
        m_clock = Clock::Unknown;
        m_sinceStop.invalidate();
    }
    m_isAlive = m_isStarting = false;
    listen();
}

void RecordWatch::forget(const QString& ip)
{
    m_tellers.remove(ip);
    if (ip != m_ip)
        return;
    m_clock = Clock::Unknown;
    m_isStarting = false;
    listen();
}

void RecordWatch::hear(qint64 ms)
{
    const bool isNew = !m_isAlive;
    m_isAlive = true;
    if (ms > 0) {
        if (m_sinceStop.isValid() && !m_sinceStop.hasExpired(echoMs))
            return;
        m_tellers.insert(m_ip);
        m_isStarting = false;
        listen();
        set(Clock::Runs);
    } else if (isNew && m_clock == Clock::Stopped) {
        // It is back, and does not record.
        emit changed(m_ip);
    }
}

void RecordWatch::noteStart(const QString& ip)
{
    if (ip != m_ip)
        return;
    m_sinceStop.invalidate();
    m_clock = Clock::Unknown;
    m_isStarting = true;
    listen();
}

void RecordWatch::noteStop(const QString& ip)
{
    if (ip != m_ip)
        return;
    m_sinceStop.start();
    m_clock = Clock::Unknown;
    m_isStarting = false;
}

void RecordWatch::set(Clock clock)
{
    if (clock == m_clock)
        return;
    m_clock = clock;
    emit changed(m_ip);
}

void RecordWatch::listen()
{
    m_silentTurns = 0;
    m_silence.start();
}

void RecordWatch::noteSilence()
{
    if (++m_silentTurns < silentLooks)
        return;
    m_silence.stop();
    // A clock that has not begun says nothing against the box that has just said that it records.
    const bool isDumb = m_isStarting && m_isAlive;
    set(m_tellers.contains(m_ip) && !isDumb ? Clock::Stopped : Clock::Unknown);
}
