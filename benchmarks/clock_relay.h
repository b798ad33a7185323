// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>

#include <deque>

class QTcpSocket;

/// Hands an MPEG-TS stream on to everyone who asks by HTTP: first what came during the last
/// `burstMs`, at once, then what comes.
class ClockRelay
{
public:
    explicit ClockRelay(int burstMs) : m_burstMs(burstMs) {}

    /// Says where it listens; ends the program when it cannot.
    QString listen(const QString& host);
    void send(const QByteArray& data);

private:
    struct Piece {
        qint64 ms;
        QByteArray packets;
    };

    void welcome(QTcpSocket* client);

    int m_burstMs;
    QTcpServer m_server;
    QList<QTcpSocket*> m_clients;
    std::deque<Piece> m_past;
    QByteArray m_rest; ///< of a packet that has not come whole
};
