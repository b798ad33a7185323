// SPDX-License-Identifier: MIT
#include "common/curl_report.h"

#include <QRegularExpression>

namespace
{

/// "1843", "1.2G": a number as the meter writes it; -1 for anything else.
qint64 bytesOf(QString text)
{
    const int power = QStringLiteral("kMGTP").indexOf(text.right(1));
    if (power >= 0 && !text.isEmpty())
        text.chop(1);
    bool isNumber = false;
    const double number = text.toDouble(&isNumber) * double(qint64(1) << (10 * (power + 1)));
    constexpr double most = 1e18; // holds in 64 bits
    return isNumber ? qint64(qMin(number, most)) : -1;
}

qint64 numberOf(const QByteArray& text)
{
    bool isNumber = false;
    const qint64 number = text.trimmed().toLongLong(&isNumber);
    return isNumber && number >= 0 ? number : -1;
}

/// "% total, total, % received, received, % sent, sent, speeds (2), times (3), speed now".
const QRegularExpression& meterPattern()
{
    static const QRegularExpression pattern = [] {
        const QString percent = QStringLiteral("\\s*\\d{1,3}\\s+");
        const QString size = QStringLiteral("(\\d+(?:\\.\\d+)?[kMGTP]?)");
        const QString time =
            QStringLiteral("\\s+(?:--:--:--|\\d+:\\d\\d:\\d\\d|\\d+d(?: \\d\\dh)?)");
        const QString gap = QStringLiteral("\\s+");
        return QRegularExpression(QLatin1Char('^') + percent + size + gap + percent + size + gap +
                                  percent + size + gap + size + gap + size + time + time + time +
                                  gap + size);
    }();
    return pattern;
}

} // namespace

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

qint64 CurlReport::totalBytes() const
{
    return m_httpStatus == 200 ? m_contentLength : m_rangeTotal;
}

void CurlReport::readLine(const QByteArray& line)
{
    // A report of the meter has no end: what curl says next stands right behind it.
    const QByteArray text = line.mid(readMeter(line));
    if (text.startsWith("< "))
        readHeader(text.mid(2));
    else if (text.startsWith("curl: "))
        m_error = QString::fromLocal8Bit(text.mid(6)).trimmed();
}

void CurlReport::readHeader(const QByteArray& line)
{
    if (line.startsWith("HTTP/")) {
        const int status = line.mid(line.indexOf(' ') + 1).left(3).toInt();
        m_httpStatus = status >= 100 ? status : 0;
        m_contentLength = -1;
        m_rangeTotal = -1;
        return;
    }
    const int colon = line.indexOf(':');
    const QByteArray name = line.left(colon).toLower();
    const QByteArray value = line.mid(colon + 1);
    if (name == "content-length")
        m_contentLength = numberOf(value);
    else if (name == "content-range")
        m_rangeTotal = numberOf(value.mid(value.lastIndexOf('/') + 1));
}

/// How much of `line` is a report of the meter.
int CurlReport::readMeter(const QByteArray& line)
{
    if (line.isEmpty() || (line[0] != ' ' && (line[0] < '0' || line[0] > '9')))
        return 0;
    const QRegularExpressionMatch match = meterPattern().match(QString::fromLatin1(line));
    if (!match.hasMatch())
        return 0;
    enum Column { Total = 1, Received, Sent, SpeedIn, SpeedOut, SpeedNow };
    m_received = bytesOf(match.captured(Received));
    const qint64 total = bytesOf(match.captured(Total));
    if (total > 0) {
        const qint64 sent = qBound<qint64>(0, bytesOf(match.captured(Sent)), total);
        m_sentPercent = int(100.0 * double(sent) / double(total));
    }
    m_silentReports = bytesOf(match.captured(SpeedNow)) > 0 ? 0 : m_silentReports + 1;
    return match.capturedEnd();
}
