// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// What `curl -v` tells on its standard error while it transfers: the server's answer, the progress
/// meter and the reason of a failure. Feed it what arrives, in pieces of any size; it keeps only
/// the last of each, whatever the server sends.
class CurlReport
{
public:
    void feed(const QByteArray& data);

    /// The server's last status code, 0 before one has come.
    int httpStatus() const { return m_httpStatus; }
    /// How long the whole file is on the server, in bytes; -1 while it has not said so.
    qint64 totalBytes() const;
    /// What has arrived since curl started, in bytes, as exactly as its meter tells.
    qint64 receivedBytes() const { return m_received; }
    /// What has been sent, in percent of all that is to be sent and received; -1 before the meter
    /// tells.
    int sentPercent() const { return m_sentPercent; }
    /// How many reports of the meter, about one a second, have come since data last arrived.
    int silentReports() const { return m_silentReports; }
    /// curl's own words for what went wrong, empty when it said nothing.
    QString error() const { return m_error; }

private:
    void readLine(const QByteArray& line);
    void readHeader(const QByteArray& line);
    int readMeter(const QByteArray& line);

    QByteArray m_line;
    int m_httpStatus = 0;
    qint64 m_contentLength = -1; ///< of this answer
    qint64 m_rangeTotal = -1;    ///< of the file that it is a range of
    qint64 m_received = 0;
    int m_sentPercent = -1;
    int m_silentReports = 0;
    QString m_error;
};
