// SPDX-License-Identifier: MIT
#include "media/event_sockets.h"

#include "common/json_map.h"

#include <QTime>

namespace
{

constexpr quint16 streamPort = 8001;
constexpr quint16 mediaPort = 8002;

QString timeText(qint64 ms)
{
    constexpr qint64 day = 24LL * 60 * 60 * 1000;
    return QTime(0, 0).addMSecs(int(ms % day)).toString(QStringLiteral("hh:mm:ss.zzz"));
}

qint64 recordMs(const QString& message)
{
    return jsonToMap(message).value(QStringLiteral("record_ms")).toLongLong();
}

} // namespace

QString recordTimeOf(const QString& message)
{
    return timeText(recordMs(message));
}

EventSocket::EventSocket(quint16 port, QObject* parent)
    : QObject(parent), m_port(port), m_socket(QString(), QWebSocketProtocol::Version13)
{
    m_socket.setMaxAllowedIncomingMessageSize(MessageLimit);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &EventSocket::attempt);
    connect(&m_socket, &QWebSocket::connected, this, [this] {
        emit connected();
        m_socket.sendTextMessage(QStringLiteral("hx_meta=on"));
    });
    connect(&m_socket, &QWebSocket::textMessageReceived, this, &EventSocket::message);
    connect(&m_socket, &QWebSocket::disconnected, this, &EventSocket::handleDisconnected);
}

EventSocket::~EventSocket()
{
    // Its farewell would ask for another attempt.
    m_socket.disconnect(this);
    m_socket.abort();
}

void EventSocket::connectTo(const QString& ip)
{
    m_url.setUrl(QStringLiteral("ws://%1:%2").arg(ip).arg(m_port));
    m_retry.stop();
    m_switching = true;
    m_socket.close(QWebSocketProtocol::CloseCodeNormal, QString());
    attempt();
    m_switching = false;
}

void EventSocket::attempt()
{
    m_lastAttempt.start();
    m_socket.open(m_url);
}

void EventSocket::handleDisconnected()
{
    if (m_switching)
        return;
    emit reconnecting(m_url.toString());
    m_retry.start(int(qBound<qint64>(0, AttemptPaceMs - m_lastAttempt.elapsed(), AttemptPaceMs)));
}

EventSockets::EventSockets(QObject* parent)
    : QObject(parent), m_stream(streamPort), m_media(mediaPort)
{
    connect(&m_stream, &EventSocket::message, this, [this](const QString& text) {
        const qint64 ms = recordMs(text);
        emit recordTime(timeText(ms));
        emit recordClock(ms);
    });
    connect(&m_stream, &EventSocket::reconnecting, this, [this] { emit recordTime(timeText(0)); });
}

void EventSockets::connectTo(const QString& ip)
{
    // What was heard last is another box's, or an earlier connection's.
    emit recordTime(timeText(0));
    m_stream.connectTo(ip);
    m_media.connectTo(ip);
}
