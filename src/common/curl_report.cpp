// SPDX-License-Identifier: MIT
#include "common/curl_report.h"

#include <QList>

void CurlReport::feed(const QByteArray& data)
{
    constexpr int longestLine = 4096;
    for (const char c : data) {
        if (c == '\r' || c == '\n') {
            readLine(m_line);
            m_line.clear();
        } else if (m_line.size() < longestLine) {
            m_line += c;
        }
    }
}

void CurlReport::readLine(const QByteArray& line)
{
    if (line.startsWith("< HTTP/"))
        m_httpStatus = line.mid(line.indexOf(' ', 2) + 1).left(3).toInt();
    else if (line.startsWith("curl: "))
        m_error = QString::fromLocal8Bit(line.mid(6)).trimmed();
    else if (!line.isEmpty() && (line[0] == ' ' || (line[0] >= '0' && line[0] <= '9')))
        readMeter(line);
}

/// "% total, total, % received, received, % sent, sent, speeds (2), times (3), speed now".
void CurlReport::readMeter(const QByteArray& line)
{
    const QList<QByteArray> columns = line.simplified().split(' ');
    bool isNumber = false;
    const int percent = columns.value(0).toInt(&isNumber);
    if (columns.size() != 12 || !isNumber)
        return;
    m_received = QString::fromLatin1(columns[3]);
    m_total = columns[1] == "0" ? QString() : QString::fromLatin1(columns[1]);
    // While the server does not tell the size, what has come counts as all and none as done.
    if (m_total.isEmpty() || (percent == 0 && m_total == m_received))
        m_percent = -1;
    else
        m_percent = qBound(0, percent, 100);
    m_flowing = columns[11] != "0";
}
