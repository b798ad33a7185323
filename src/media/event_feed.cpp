// SPDX-License-Identifier: MIT
#include "media/event_feed.h"

#include "common/limits.h"
#include "media/event_sockets.h"

#include <QAbstractSocket>
#include <QNetworkProxy>
#include <QWebSocket>

EventFeed::EventFeed(quint16 port)
    : m_port(port), m_retry(this), m_handshake(this), m_alive(this), m_hand(this)
{
    for (QTimer* timer : {&m_retry, &m_handshake, &m_hand})
        timer->setSingleShot(true);
    m_alive.setInterval(Limits::FeedPingMs);
    connect(&m_retry, &QTimer::timeout, this, &EventFeed::attempt);
    connect(&m_handshake, &QTimer::timeout, this, &EventFeed::lost);
    connect(&m_alive, &QTimer::timeout, this, &EventFeed::checkAlive);
    connect(&m_hand, &QTimer::timeout, this, &EventFeed::hand);
}

EventFeed::~EventFeed()
{
    drop();
}

void EventFeed::connectTo(const QString& ip, int turn)
{
    m_turn = turn;
    m_url.setUrl(QStringLiteral("ws://%1:%2").arg(ip).arg(m_port));
    m_retry.stop();
    m_told.clear();
    attempt();
}

void EventFeed::attempt()
{
    drop();
    m_lastAttempt.start();
    m_socket = new QWebSocket(QString(), QWebSocketProtocol::Version13, this);
    m_socket->setProxy(QNetworkProxy::NoProxy);
    m_socket->setReadBufferSize(Limits::FeedHandshakeLookBytes);
    m_socket->setMaxAllowedIncomingFrameSize(Limits::FeedMessageBytes);
    m_socket->setMaxAllowedIncomingMessageSize(Limits::FeedMessageBytes);
    connect(m_socket, &QWebSocket::connected, this, &EventFeed::greet);
    connect(m_socket, &QWebSocket::textMessageReceived, this, &EventFeed::take);
    connect(m_socket, &QWebSocket::pong, this, [this] { m_isWaitingForPong = false; });
    connect(m_socket, &QWebSocket::disconnected, this, &EventFeed::closed);
    connect(m_socket, QOverload<QAbstractSocket::SocketError>::of(&QWebSocket::error), this,
            &EventFeed::lost);
    m_handshake.start(Limits::FeedHandshakeMs);
    m_looks = 0;
    m_socket->open(m_url);
    // Without a way to the box it may have been given up already.
    if (!m_socket)
        return;
    const auto* wire = m_socket->findChild<QAbstractSocket*>();
    connect(wire, &QIODevice::readyRead, this, [this, wire] { watch(*wire); });
}

/// The library itself has no end to what it keeps of a handshake, nor to the answers that nobody
/// takes from it.
void EventFeed::watch(const QAbstractSocket& wire)
{
    if (m_handshake.isActive() && ++m_looks > Limits::FeedHandshakeLooks) {
        tell(QStringLiteral("bytes of the handshake of a feed"));
        lost();
    } else if (wire.bytesToWrite() > Limits::FeedUnsentBytes) {
        tell(QStringLiteral("pings of a feed without taking the answers"));
        lost();
    }
}

void EventFeed::drop()
{
    m_handshake.stop();
    m_alive.stop();
    m_hand.stop();
    forget();
    if (!m_socket)
        return;
    // Its farewell would ask for another attempt.
    m_socket->disconnect(this);
    m_socket->abort();
    m_socket->deleteLater();
    m_socket = nullptr;
}

void EventFeed::greet()
{
    m_handshake.stop();
    m_socket->setReadBufferSize(Limits::FeedUnreadBytes);
    m_isWaitingForPong = false;
    m_alive.start();
    emit connected(m_turn);
    m_socket->sendTextMessage(QStringLiteral("hx_meta=on"));
}

/// A box that lost its power says no farewell.
void EventFeed::checkAlive()
{
    if (m_isWaitingForPong) {
        lost();
        return;
    }
    m_isWaitingForPong = true;
    m_socket->ping();
}

void EventFeed::take(const QString& text)
{
    m_isWaitingForPong = false;
    m_texts << text;
    m_chars += text.size();
    while (m_texts.size() > Limits::FeedMessagesAtOnce ||
           (m_chars > Limits::FeedCharsAtOnce && m_texts.size() > 1)) {
        m_chars -= m_texts.takeFirst().size();
        tell(QStringLiteral("messages of a feed at once"));
    }
    if (!m_hand.isActive())
        m_hand.start(Limits::FeedPaceMs);
}

void EventFeed::forget()
{
    m_texts.clear();
    m_chars = 0;
}

void EventFeed::hand()
{
    const QStringList texts = m_texts;
    forget();
    emit messages(m_turn, texts);
}

void EventFeed::closed()
{
    if (m_socket->closeCode() == QWebSocketProtocol::CloseCodeTooMuchData)
        tell(QStringLiteral("bytes of a message of a feed"));
    lost();
}

void EventFeed::tell(const QString& what)
{
    if (m_told.contains(what))
        return;
    m_told << what;
    emit limitPassed(m_url.host(), what);
}

void EventFeed::lost()
{
    drop();
    emit reconnecting(m_turn, m_url.toString());
    constexpr qint64 pace = EventSocket::AttemptPaceMs;
    m_retry.start(int(qBound<qint64>(0, pace - m_lastAttempt.elapsed(), pace)));
}
