// SPDX-License-Identifier: MIT
#include "simulator/event_feed.h"

#include "simulator/sockets.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QWebSocket>
#include <QWebSocketServer>

namespace sim
{
namespace
{
constexpr int tickMs = 100;
constexpr int floodTickMs = 10;
constexpr qint64 maxUnsent = 8 * 1024 * 1024; // a client that reads no more loses messages
constexpr quint64 maxIncoming = 64 * 1024;
} // namespace

EventFeed::EventFeed(FaultList* faults, std::function<QStringList(int)> messages, QObject* parent)
    : QObject(parent), m_faults(faults), m_messages(std::move(messages)), m_timer(this)
{
    connect(&m_timer, &QTimer::timeout, this, &EventFeed::tick);
}

EventFeed::~EventFeed()
{
    close();
}

bool EventFeed::open(const QString& address, quint16 port)
{
    close();
    m_server = std::make_unique<QWebSocketServer>(QString(), QWebSocketServer::NonSecureMode);
    connect(m_server.get(), &QWebSocketServer::newConnection, this, &EventFeed::accept);
    m_port = std::make_unique<QTcpServer>();
    connect(m_port.get(), &QTcpServer::newConnection, this, &EventFeed::greet);
    return m_port->listen(QHostAddress(address), port);
}

/// By the rules, or as the faults want it.
void EventFeed::greet()
{
    const QStringList tags = {QStringLiteral("events")};
    while (QTcpSocket* client = m_port->nextPendingConnection()) {
        const bool isEndless = bool(m_faults->strike(FaultKind::EndlessHandshake, tags));
        const bool isRefused = !isEndless && m_faults->strike(FaultKind::RefusedHandshake, tags);
        if (!isEndless && !isRefused) {
            m_server->handleConnection(client);
            continue;
        }
        connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
        if (isRefused) {
            client->write("HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n");
            client->disconnectFromHost();
            continue;
        }
        client->write("HTTP/1.1 101 Switching Protocols\r\n");
        const auto more = [client] {
            if (client->bytesToWrite() < maxUnsent)
                client->write(QByteArray("X-More: more\r\n").repeated(1000));
        };
        auto* timer = new QTimer(client);
        connect(timer, &QTimer::timeout, client, more);
        timer->start(floodTickMs);
    }
}

void EventFeed::close()
{
    // First a shutdown: a child process started meanwhile may hold a copy of the socket.
    if (m_port && m_port->isListening())
        sockets::shutDown(socket_t(m_port->socketDescriptor()));
    m_port.reset(); // and with it whom it holds up
    dropClients();
    m_server.reset();
}

void EventFeed::dropClients()
{
    const QList<QWebSocket*> clients = m_clients.keys();
    for (QWebSocket* client : clients) {
        client->disconnect(this);
        forget(client);
        client->abort();
    }
}

void EventFeed::send(const QString& text)
{
    const QMap<QWebSocket*, bool> clients = m_clients; // a failing send takes its client out
    for (auto it = clients.constBegin(); it != clients.constEnd(); ++it) {
        if (it.value() && it.key()->bytesToWrite() < maxUnsent)
            it.key()->sendTextMessage(text);
    }
}

int EventFeed::listeners() const
{
    return m_listeners;
}

void EventFeed::accept()
{
    while (QWebSocket* client = m_server->nextPendingConnection()) {
        client->setMaxAllowedIncomingMessageSize(maxIncoming);
        m_clients.insert(client, false);
        connect(client, &QWebSocket::disconnected, this, [this, client] { forget(client); });
        connect(client, &QWebSocket::textMessageReceived, this,
                [this, client](const QString& text) {
                    if (text == QLatin1String("hx_meta=on")) {
                        setListening(client, true);
                    } else if (text == QLatin1String("hx_meta=off")) {
                        setListening(client, false);
                    }
                });
    }
}

void EventFeed::forget(QWebSocket* client)
{
    setListening(client, false);
    m_clients.remove(client);
    client->deleteLater();
}

void EventFeed::setListening(QWebSocket* client, bool listens)
{
    m_clients[client] = listens;
    int count = 0;
    for (const bool each : qAsConst(m_clients))
        count += each ? 1 : 0;
    m_listeners = count;
    if (count == 0) {
        m_timer.stop();
    } else if (!m_timer.isActive()) {
        m_ticks = 0;
        m_timer.start(tickMs);
    }
}

void EventFeed::tick()
{
    const QStringList tags = {QStringLiteral("events")};
    if (const auto flood = m_faults->strike(FaultKind::Flood, tags)) {
        m_timer.setInterval(floodTickMs);
        const qint64 count = flood->amountOrDefault() * floodTickMs / 1000;
        for (qint64 i = 0; i < count; ++i)
            send(QStringLiteral("{\"event\":\"flood\",\"number\":%1}").arg(++m_flooded));
        return;
    }
    m_timer.setInterval(tickMs);
    if (const auto huge = m_faults->strike(FaultKind::HugeMessage, tags)) {
        send(QString(int(huge->amountOrDefault()), QLatin1Char('x')));
        return;
    }
    QStringList messages = m_messages(m_ticks++);
    if (const auto text = m_faults->strike(FaultKind::Text, tags))
        messages << (text->text.isEmpty() ? hostileText() : text->text);
    for (const QString& message : qAsConst(messages))
        send(message);
}

} // namespace sim
