// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/http_server.h"
#include "simulator/test_picture.h"

#include <QMutex>
#include <QObject>
#include <QWaitCondition>

#include <atomic>
#include <deque>
#include <memory>

namespace sim
{

/// The newest pieces of a stream, written by one thread and read by any number of others, each at
/// its own speed; a reader that falls too far behind goes on with the oldest piece there is.
class LiveBuffer
{
public:
    void append(const QByteArray& piece);
    void end();
    /// The first piece from number `next` on, and makes `next` the number after it; waits up to
    /// 200 ms for one, then gives an empty piece. False when the stream has ended.
    bool take(quint64* next, QByteArray* piece);
    quint64 newest() const; ///< the number that the next piece will get

private:
    mutable QMutex m_mutex;
    QWaitCondition m_arrived;
    // All guarded by m_mutex.
    std::deque<QByteArray> m_pieces;
    quint64 m_first = 0;
    bool m_ended = false;
};

/// A box's live picture: an MPEG-TS stream over HTTP, from one FFmpeg child, for any number of
/// viewers. Lives in the simulator's thread; state() may be asked from any thread.
class LiveStream : public QObject
{
    Q_OBJECT

public:
    enum class State { Off, Starting, On, Failed };

    explicit LiveStream(QObject* parent = nullptr);
    ~LiveStream() override;

    /// Starts serving "http://<address>:<port>/live.ts"; state() goes to Starting, then to On with
    /// the first picture, or to Failed. `spoil` may change every viewer's reply.
    void start(const QString& address, quint16 port, std::function<void(HttpReply*)> spoil);
    void stop();

    State state() const;

private:
    HttpReply handle(const HttpRequest& request) const;

    std::unique_ptr<FfmpegProcess> m_ffmpeg;
    std::unique_ptr<HttpServer> m_server;
    std::shared_ptr<LiveBuffer> m_buffer;
    std::function<void(HttpReply*)> m_spoil;
    std::atomic<State> m_state{State::Off};
};

} // namespace sim
