// SPDX-License-Identifier: MIT
#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

/// A server that takes connections, answers a request with `reply`, or says it unasked, and no more
/// until told.
class ScriptedServer : public QTcpServer
{
public:
    explicit ScriptedServer(const QString& address, const QByteArray& reply = {},
                            bool unasked = false)
        : m_reply(reply)
    {
        if (!listen(QHostAddress(address)))
            qFatal("cannot listen at %s", qPrintable(address));
        connect(this, &QTcpServer::newConnection, this, [this, unasked] {
            QTcpSocket* socket = nextPendingConnection();
            m_sockets << socket;
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                m_sockets.removeAll(socket);
                socket->deleteLater();
            });
            if (unasked)
                socket->write(m_reply);
            else if (!m_reply.isEmpty())
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    if (socket->readAll().contains("\r\n\r\n"))
                        socket->write(m_reply);
                });
        });
    }

    QString url(const QString& scheme, const QString& path = "1") const
    {
        return QStringLiteral("%1://%2:%3/%4")
            .arg(scheme, serverAddress().toString())
            .arg(serverPort())
            .arg(path);
    }

    int connections() const { return m_sockets.size(); }
    void send(const QByteArray& data)
    {
        for (QTcpSocket* socket : qAsConst(m_sockets))
            socket->write(data);
    }

private:
    const QByteArray m_reply;
    QList<QTcpSocket*> m_sockets;
};

inline QByteArray httpReply(const QByteArray& type, const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: " + type + "\r\nConnection: close\r\n\r\n" + body;
}
