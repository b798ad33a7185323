// SPDX-License-Identifier: MIT
#include "benchmarks/clock_relay.h"

#include "benchmarks/bench_support.h"
#include "benchmarks/clock_picture.h"

#include <QTcpSocket>

namespace
{

constexpr int packetSize = 188;
/// Who does not take this much is not listening.
constexpr qint64 mostWaiting = 32 * 1024 * 1024;

} // namespace

QString ClockRelay::listen(const QString& host)
{
    if (!m_server.listen(QHostAddress(host), 0))
        qFatal("cannot listen at %s", qPrintable(host));
    QObject::connect(&m_server, &QTcpServer::newConnection, [this] {
        while (QTcpSocket* client = m_server.nextPendingConnection()) {
            QObject::connect(client, &QTcpSocket::disconnected, [this, client] {
                m_clients.removeAll(client);
                note("sender: a player has gone");
                client->deleteLater();
            });
            QObject::connect(client, &QTcpSocket::readyRead, [this, client] { welcome(client); });
        }
    });
    return QString("http://%1:%2/live.ts").arg(host).arg(m_server.serverPort());
}

void ClockRelay::welcome(QTcpSocket* client)
{
    // Players ask in one piece, and once.
    client->readAll();
    if (m_clients.contains(client))
        return;
    client->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    client->write("HTTP/1.0 200 OK\r\nContent-Type: video/mp2t\r\nConnection: close\r\n\r\n");
    for (const Piece& piece : m_past)
        client->write(piece.packets);
    m_clients << client;
    note("sender: a player has come");
}

void ClockRelay::send(const QByteArray& data)
{
    m_rest += data;
    const QByteArray packets = m_rest.left(m_rest.size() / packetSize * packetSize);
    m_rest.remove(0, packets.size());
    const qint64 now = ClockPicture::nowMs();
    m_past.push_back({now, packets});
    while (!m_past.empty() && m_past.front().ms < now - m_burstMs)
        m_past.pop_front();
    const QList<QTcpSocket*> clients = m_clients;
    for (QTcpSocket* client : clients) {
        if (client->bytesToWrite() > mostWaiting)
            client->abort();
        else
            client->write(packets);
    }
}
