// SPDX-License-Identifier: MIT
#include "simulator/live_stream.h"

#include <QMutexLocker>

#include <algorithm>

namespace sim
{
namespace
{
constexpr size_t maxPieces = 200; // some seconds
constexpr unsigned long waitMs = 200;
} // namespace

void LiveBuffer::append(const QByteArray& piece)
{
    const QMutexLocker lock(&m_mutex);
    m_pieces.push_back(piece);
    if (m_pieces.size() > maxPieces) {
        m_pieces.pop_front();
        ++m_first;
    }
    m_arrived.wakeAll();
}

void LiveBuffer::end()
{
    const QMutexLocker lock(&m_mutex);
    m_ended = true;
    m_arrived.wakeAll();
}

bool LiveBuffer::take(quint64* next, QByteArray* piece)
{
    const QMutexLocker lock(&m_mutex);
    piece->clear();
    if (!m_ended && *next >= m_first + m_pieces.size()) {
        m_arrived.wait(&m_mutex, waitMs);
    }
    if (m_ended) {
        return false;
    }
    *next = std::max(*next, m_first);
    if (*next < m_first + m_pieces.size()) {
        *piece = m_pieces[size_t(*next - m_first)];
        ++*next;
    }
    return true;
}

quint64 LiveBuffer::newest() const
{
    const QMutexLocker lock(&m_mutex);
    return m_first + m_pieces.size();
}

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
    m_ffmpeg = std::make_unique<FfmpegProcess>();
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
    m_ffmpeg->startWith(testPictureArguments(QStringLiteral("LIVE ") + address, true)
                        << QStringLiteral("-f") << QStringLiteral("mpegts")
                        << QStringLiteral("-flush_packets") << QStringLiteral("1")
                        << QStringLiteral("pipe:1"));
}

void LiveStream::stop()
{
    if (m_buffer) {
        m_buffer->end();
    }
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
    auto next = std::make_shared<quint64>(m_buffer->newest());
    reply.source = [buffer = m_buffer, next](QByteArray* piece) {
        return buffer->take(next.get(), piece);
    };
    m_spoil(&reply);
    return reply;
}

} // namespace sim
