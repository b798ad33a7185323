// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <functional>

/// Takes in one reply to a GET, piece by piece as it arrives, and keeps no more of it than its
/// limits allow. Plain data: it knows no socket and no clock.
class HttpReplyParser
{
public:
    enum class State {
        Reading,
        Done,  ///< all of it is there
        Failed ///< not a reply, more of it than wanted, or cut off
    };

    /// Takes a body piece by piece in place of body(); false when it wants no more.
    using Sink = std::function<bool(const QByteArray& piece)>;

    /// `bodyLimit` in bytes.
    explicit HttpReplyParser(qint64 bodyLimit, Sink sink = {})
        : m_bodyLimit(bodyLimit), m_sink(std::move(sink))
    {
    }

    /// The reply has no body, whatever it says: it was asked for by HEAD.
    void expectNoBody() { m_hasNoBody = true; }

    /// The next bytes from the server.
    State feed(const QByteArray& data);
    /// The server has closed the connection.
    State close();

    State state() const { return m_state; }
    /// Which limit the reply went over, in plain words; null when none.
    const char* exceeded() const { return m_exceeded; }
    /// Of the reply; 0 before it is known.
    int status() const { return m_status; }
    QByteArray body() const { return m_body; }
    /// What it says of the name of the body.
    QByteArray disposition() const { return m_disposition; }
    /// The connection may be used for another request.
    bool keepsAlive() const { return m_state == State::Done && m_keepsAlive && !m_surplus; }

private:
    enum class Part { Status, Headers, Length, UntilClose, ChunkSize, Chunk, ChunkEnd, Trailers };

    qint64 takeLine(const QByteArray& data, qint64 from);
    qint64 takeBody(const QByteArray& data, qint64 from);
    void readLine();
    void readStatus();
    void readHeader();
    void readLength(const QByteArray& value);
    void readChunkSize();
    void beginBody();
    void fail() { m_state = State::Failed; }
    void failOver(const char* limit);

    const qint64 m_bodyLimit;
    const Sink m_sink;
    const char* m_exceeded = nullptr;
    State m_state = State::Reading;
    Part m_part = Part::Status;
    QByteArray m_line;
    QByteArray m_body;
    QByteArray m_disposition;
    qint64 m_bodyBytes = 0;
    qint64 m_headBytes = 0;
    qint64 m_length = -1; ///< of the body, or what is still to come of its present piece
    int m_status = 0;
    bool m_chunked = false;
    bool m_hasNoBody = false;
    bool m_keepsAlive = true;
    bool m_surplus = false; ///< more came than the reply
};
