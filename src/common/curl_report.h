// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// What `curl -v` tells on its standard error while it transfers: the server's status, the
/// progress meter and the reason of a failure. Feed it what arrives; it keeps only the last of
/// each, whatever the server sends.
class CurlReport
{
public:
    void feed(const QByteArray& data);

    /// The server's last status code, 0 before one has come.
    int httpStatus() const { return m_httpStatus; }
    /// 0 to 100; -1 while unknown.
    int percent() const { return m_percent; }
    /// As curl writes sizes: "512k", "1.2G"; empty while unknown.
    QString received() const { return m_received; }
    QString total() const { return m_total; }
    /// False while nothing has arrived for a few seconds.
    bool isFlowing() const { return m_flowing; }
    /// curl's own words for what went wrong, empty when it said nothing.
    QString error() const { return m_error; }

private:
    void readLine(const QByteArray& line);
    void readMeter(const QByteArray& line);

    QByteArray m_line;
    int m_httpStatus = 0;
    int m_percent = -1;
    QString m_received;
    QString m_total;
    bool m_flowing = true;
    QString m_error;
};
