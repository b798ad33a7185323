// SPDX-License-Identifier: MIT
#include "common/http_reply_parser.h"

#include "common/limits.h"

#include <QList>

namespace
{

constexpr const char* headBytesLimit = "bytes before the body of a reply";
constexpr const char* bodyBytesLimit = "bytes of the body of a reply";

} // namespace

HttpReplyParser::State HttpReplyParser::feed(const QByteArray& data)
{
    qint64 at = 0;
    while (m_state == State::Reading && at < data.size()) {
        const bool isBody =
            m_part == Part::Length || m_part == Part::UntilClose || m_part == Part::Chunk;
        at = isBody ? takeBody(data, at) : takeLine(data, at);
    }
    m_surplus = m_surplus || at < data.size();
    return m_state;
}

HttpReplyParser::State HttpReplyParser::close()
{
    m_keepsAlive = false;
    if (m_state == State::Reading)
        m_state = m_part == Part::UntilClose ? State::Done : State::Failed;
    return m_state;
}

void HttpReplyParser::failOver(const char* limit)
{
    m_exceeded = limit;
    fail();
}

qint64 HttpReplyParser::takeLine(const QByteArray& data, qint64 from)
{
    const qint64 end = data.indexOf('\n', int(from));
    const qint64 next = end < 0 ? data.size() : end + 1;
    m_headBytes += next - from;
    if (m_headBytes > Limits::HttpHeadBytes) {
        failOver(headBytesLimit);
        return next;
    }
    m_line += data.mid(int(from), int(next - from));
    if (end >= 0) {
        m_line = m_line.trimmed();
        readLine();
        m_line.clear();
    }
    return next;
}

qint64 HttpReplyParser::takeBody(const QByteArray& data, qint64 from)
{
    const qint64 there = data.size() - from;
    const qint64 mine = m_part == Part::UntilClose ? there : qMin(there, m_length);
    m_bodyBytes += mine;
    if (m_bodyBytes > m_bodyLimit) {
        failOver(bodyBytesLimit);
        return from;
    }
    if (!m_sink)
        m_body += data.mid(int(from), int(mine));
    else if (!m_sink(data.mid(int(from), int(mine))))
        fail();
    if (m_state == State::Failed)
        return from + mine;
    if (m_part == Part::UntilClose)
        return from + mine;
    m_length -= mine;
    if (m_length == 0 && m_part == Part::Chunk)
        m_part = Part::ChunkEnd;
    else if (m_length == 0)
        m_state = State::Done;
    return from + mine;
}

void HttpReplyParser::readLine()
{
    switch (m_part) {
    case Part::Status:
        readStatus();
        break;
    case Part::Headers:
        if (m_line.isEmpty())
            beginBody();
        else
            readHeader();
        break;
    case Part::ChunkSize:
        readChunkSize();
        break;
    case Part::ChunkEnd:
        if (m_line.isEmpty())
            m_part = Part::ChunkSize;
        else
            fail();
        break;
    case Part::Trailers:
        if (m_line.isEmpty())
            m_state = State::Done;
        break;
    case Part::Length:
    case Part::UntilClose:
    case Part::Chunk:
        break;
    }
}

void HttpReplyParser::readStatus()
{
    bool isNumber = false;
    m_status = m_line.mid(9, 3).toInt(&isNumber);
    const bool isHttp = m_line.startsWith("HTTP/1.") && m_line.size() >= 12 && m_line.at(8) == ' ';
    if (!isHttp || !isNumber || m_status < 100 || m_status > 599) {
        fail();
        return;
    }
    // The older version closes unless it says otherwise.
    m_keepsAlive = m_line.at(7) != '0';
    m_part = Part::Headers;
}

void HttpReplyParser::readHeader()
{
    const int colon = m_line.indexOf(':');
    const QByteArray name = m_line.left(qMax(0, colon)).trimmed().toLower();
    const QByteArray value = m_line.mid(colon + 1).trimmed();
    if (name == "content-length")
        readLength(value);
    else if (name == "transfer-encoding")
        m_chunked = value.toLower().endsWith("chunked");
    else if (name == "connection" && value.toLower() == "close")
        m_keepsAlive = false;
    else if (name == "connection" && value.toLower() == "keep-alive")
        m_keepsAlive = true;
    else if (name == "content-disposition")
        m_disposition = value;
    else if (name == "content-encoding" && value.toLower() != "identity")
        fail(); // nobody asked for it, and nobody unpacks it
}

void HttpReplyParser::readLength(const QByteArray& value)
{
    bool isNumber = false;
    const qint64 length = value.toLongLong(&isNumber);
    if (!isNumber || length < 0 || (m_length >= 0 && m_length != length))
        fail();
    else
        m_length = length;
}

void HttpReplyParser::readChunkSize()
{
    bool isNumber = false;
    const qint64 size = m_line.split(';').first().trimmed().toLongLong(&isNumber, 16);
    if (!isNumber || size < 0) {
        fail();
        return;
    }
    if (size > m_bodyLimit - m_bodyBytes) {
        failOver(bodyBytesLimit);
        return;
    }
    // A long body has many of them, which nobody keeps.
    if (m_sink)
        m_headBytes = 0;
    m_length = size;
    m_part = size == 0 ? Part::Trailers : Part::Chunk;
}

void HttpReplyParser::beginBody()
{
    if (m_status < 200) {
        // Something before the reply itself.
        m_part = Part::Status;
        m_length = -1;
        m_chunked = false;
        return;
    }
    const bool isEmpty =
        m_hasNoBody || m_status == 204 || m_status == 304 || (!m_chunked && m_length == 0);
    if (isEmpty) {
        m_state = State::Done;
    } else if (m_chunked) {
        m_part = Part::ChunkSize;
    } else if (m_length > m_bodyLimit) {
        failOver(bodyBytesLimit);
    } else {
        m_part = m_length > 0 ? Part::Length : Part::UntilClose;
        m_keepsAlive = m_keepsAlive && m_length > 0;
    }
}
