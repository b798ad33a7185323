// SPDX-License-Identifier: MIT
#include "simulator/live_stream.h"

#include "simulator/test_picture.h"

namespace sim
{
LiveStream::LiveStream(QObject* parent) : QObject(parent) {}

LiveStream::~LiveStream()
{
    stop();
}

void LiveStream::start(const QString& address, quint16 port, std::function<void(HttpReply*)> spoil)
{
    stop();
    m_state = State::Starting;
    m_spoil = std::move(spoil);
    m_buffer = std::make_shared<LiveBuffer>();
    HttpHandlers handlers;
    handlers.handle = [this](const HttpRequest& request) { return handle(request); };
    m_server = std::make_unique<HttpServer>(address, port, handlers);
    if (!m_server->start()) {
        m_state = State::Failed;
        return;
    }
    m_ffmpeg = std::make_unique<ChildProcess>();
    connect(m_ffmpeg.get(), &QProcess::readyReadStandardOutput, this, [this] {
        m_buffer->append(m_ffmpeg->readAllStandardOutput());
        m_state = State::On;
    });
    connect(m_ffmpeg.get(), &QProcess::stateChanged, this, [this](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning) {
            m_buffer->end();
            m_state = State::Failed;
        }
    });
    startFfmpeg(m_ffmpeg.get(), testPictureArguments(QStringLiteral("LIVE ") + address, true)
                                    << QStringLiteral("-f") << QStringLiteral("mpegts")
                                    << QStringLiteral("-flush_packets") << QStringLiteral("1")
                                    << QStringLiteral("-mpegts_flags")
                                    << QStringLiteral("pat_pmt_at_frames")
                                    << QStringLiteral("pipe:1"));
}

void LiveStream::stop()
{
    if (m_buffer)
        m_buffer->end();
    if (m_server) {
        m_server->stop();
        m_server.reset();
    }
    if (m_ffmpeg) {
        m_ffmpeg->disconnect(this);
        m_ffmpeg.reset();
    }
    m_state = State::Off;
}

LiveStream::State LiveStream::state() const
{
    return m_state;
}

HttpReply LiveStream::handle(const HttpRequest& request) const
{
    HttpReply reply;
    if (request.path != "/live.ts") {
        reply.status = 404;
        return reply;
    }
    reply.type = "video/mp2t";
    auto next = std::make_shared<quint64>(m_buffer->start());
    reply.source = [buffer = m_buffer, next](QByteArray* piece) {
        return buffer->take(next.get(), piece);
    };
    m_spoil(&reply);
    return reply;
}

} // namespace sim
