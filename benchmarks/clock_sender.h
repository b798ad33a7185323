// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QString>

/// An endless live stream whose pictures carry the time at which they were made (ClockPicture):
/// H.264 with a key picture every half second as MPEG-TS.
struct ClockStream {
    QString way = "http";    ///< "udp", "srt" or "http"
    int partsPerMillion = 0; ///< how much faster than this computer's the sender's clock runs
    int burstMs = 0;         ///< by HTTP: how much of what was sent before a player gets at once
};

/// Sends in a process of its own, so that nothing here is in its way.
class ClockSender
{
public:
    explicit ClockSender(const ClockStream& stream);
    ~ClockSender();

    /// Where to see the stream.
    QString address() const { return m_address; }

private:
    QProcess m_process;
    QString m_address;
};

/// The body of that process: sends until its standard input ends.
int sendClock(const ClockStream& stream);
