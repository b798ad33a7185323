// SPDX-License-Identifier: MIT
#include "media/event_feed.h"

#include "common/limits.h"
#include "media/event_sockets.h"

#include <QNetworkProxy>
#include <QTcpSocket>
#include <QWebSocket>

namespace
{

constexpr const char* handshakeTimeLimit = "milliseconds until an event feed is agreed on";
constexpr const char* handshakeLimit = "pieces of what an event feed begins with";
constexpr const char* unsentLimit = "unread bytes of an event feed";
constexpr const char* messageLimit = "bytes of a message of an event feed";

} // namespace

EventFeed::EventFeed(quint16 port)
    : m_port(port), m_retry(this), m_handshake(this), m_alive(this), m_hand(this)
{
    for (QTimer* timer : {&m_retry, &m_handshake, &m_hand})
        timer->setSingleShot(true);
    m_alive.setInterval(Limits::FeedPingMs);
    connect(&m_retry, &QTimer::timeout, this, &EventFeed::attempt);
    connect(&m_handshake, &QTimer::timeout, this, [this] { loseOver(handshakeTimeLimit); });
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
    attempt();
}

void EventFeed::attempt()
{
    drop();
    m_lastAttempt.start();
    m_socket = new QWebSocket(QString(), QWebSocketProtocol::Version13, this);
    m_socket->setProxy(QNetworkProxy::NoProxy);
    m_socket->setReadBufferSize(Limits::FeedMessageBytes);
    m_socket->setMaxAllowedIncomingFrameSize(Limits::FeedMessageBytes);
    m_socket->setMaxAllowedIncomingMessageSize(Limits::FeedMessageBytes);
    connect(m_socket, &QWebSocket::connected, this, &EventFeed::greet);
    connect(m_socket, &QWebSocket::textMessageReceived, this, &EventFeed::take);
    connect(m_socket, &QWebSocket::pong, this, [this] { m_isWaitingForPong = false; });
    connect(m_socket, &QWebSocket::disconnected, this, &EventFeed::lost);
    connect(m_socket, QOverload<QAbstractSocket::SocketError>::of(&QWebSocket::error), this,
            &EventFeed::lost);
    m_pieces = 0;
    m_handshake.start(Limits::FeedHandshakeMs);
    m_socket->open(m_url);
    // Neither what it keeps of a handshake nor its answers to pings has a limit of its own.
    const auto* bytes = m_socket ? m_socket->findChild<QTcpSocket*>() : nullptr;
    if (bytes)
        connect(bytes, &QTcpSocket::readyRead, this, &EventFeed::checkCost);
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

/// With each piece that has come.
void EventFeed::checkCost()
{
    if (!m_socket)
        return;
    if (m_handshake.isActive() && ++m_pieces > Limits::FeedHandshakePieces)
        loseOver(handshakeLimit);
    else if (m_socket->bytesToWrite() > Limits::FeedUnsentBytes)
        loseOver(unsentLimit);
}

void EventFeed::take(const QString& text)
{
    m_isWaitingForPong = false;
    m_texts << text;
    m_chars += text.size();
    while (m_texts.size() > Limits::FeedMessagesAtOnce ||
           (m_chars > Limits::FeedCharsAtOnce && m_texts.size() > 1))
        m_chars -= m_texts.takeFirst().size();
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

void EventFeed::loseOver(const char* limit)
{
    emit exceeded(m_url.host(), QString::fromLatin1(limit));
    lost();
}

void EventFeed::lost()
{
    if (m_socket && m_socket->closeCode() == QWebSocketProtocol::CloseCodeTooMuchData)
        emit exceeded(m_url.host(), QString::fromLatin1(messageLimit));
    drop();
    emit reconnecting(m_turn, m_url.toString());
    constexpr qint64 pace = EventSocket::AttemptPaceMs;
    m_retry.start(int(qBound<qint64>(0, pace - m_lastAttempt.elapsed(), pace)));
}
