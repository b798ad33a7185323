// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/child_process.h"
#include "simulator/http_server.h"
#include "simulator/live_buffer.h"

#include <QObject>

#include <atomic>
#include <memory>

namespace sim
{

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

    std::unique_ptr<ChildProcess> m_ffmpeg;
    std::unique_ptr<HttpServer> m_server;
    std::shared_ptr<LiveBuffer> m_buffer;
    std::function<void(HttpReply*)> m_spoil;
    std::atomic<State> m_state{State::Off};
};

} // namespace sim
