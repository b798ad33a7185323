// SPDX-License-Identifier: MIT
#pragma once

#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>

/// Wine's encryption is no server's, and the system's own wants certificates from its own store.
#ifdef Q_OS_WIN
#define NEED_ENCRYPTED_SERVERS() QSKIP("no server of a test can encrypt here")
#else
#define NEED_ENCRYPTED_SERVERS() static_cast<void>(0)
#endif

/// A server that takes connections, says `reply` to each request, and no more until told: for what
/// no box would ever send.
class ScriptedServer : public QTcpServer
{
public:
    enum Manner {
        StaysOpen,
        Closes, ///< after its reply
        Unasked ///< says its reply without a request, and stays open
    };

    explicit ScriptedServer(const QString& address, const QByteArray& reply = {},
                            Manner manner = StaysOpen, quint16 port = 0)
        : m_reply(reply), m_manner(manner)
    {
        if (!listen(QHostAddress(address), port))
            qFatal("cannot listen at %s", qPrintable(address));
    }
    /// From now on over TLS.
    void encrypt(const QByteArray& certificate, const QByteArray& ellipticKey)
    {
        m_certificate = QSslCertificate(certificate);
        m_key = QSslKey(ellipticKey, QSsl::Ec);
    }

    QString url(const QString& scheme, const QString& path = "1") const
    {
        return QString("%1://%2:%3/%4")
            .arg(scheme, serverAddress().toString())
            .arg(serverPort())
            .arg(path);
    }
    void setReply(const QByteArray& reply) { m_reply = reply; }
    /// Requests that it has read.
    int asked() const { return m_asked; }
    int connections() const { return m_sockets.size(); }
    int taken() const { return m_taken; } ///< connections ever
    void send(const QByteArray& data)
    {
        for (QTcpSocket* socket : qAsConst(m_sockets))
            socket->write(data);
    }

protected:
    void incomingConnection(qintptr handle) override
    {
        auto* socket = new QSslSocket(this);
        socket->setSocketDescriptor(handle);
        m_sockets << socket;
        ++m_taken;
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_sockets.removeAll(socket);
            socket->deleteLater();
        });
        if (!m_key.isNull()) {
            socket->setLocalCertificate(m_certificate);
            socket->setPrivateKey(m_key);
            socket->startServerEncryption();
        }
        if (m_manner == Unasked)
            socket->write(m_reply);
        else
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(*socket); });
    }

    virtual QByteArray replyTo(const QByteArray& request)
    {
        const int body = m_reply.indexOf("\r\n\r\n") + 4;
        return request.startsWith("HEAD") ? m_reply.left(body) : m_reply;
    }

private:
    void answer(QTcpSocket& socket)
    {
        const QByteArray request = socket.readAll();
        if (!request.contains("\r\n\r\n"))
            return;
        ++m_asked;
        const QByteArray reply = replyTo(request);
        if (reply.isEmpty())
            return;
        socket.write(reply);
        if (m_manner == Closes)
            socket.disconnectFromHost();
    }

    QByteArray m_reply;
    int m_asked = 0;
    const Manner m_manner;
    QSslCertificate m_certificate;
    QSslKey m_key;
    QList<QTcpSocket*> m_sockets;
    int m_taken = 0;
};

inline QByteArray httpReply(const QByteArray& type, const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: " + type + "\r\nConnection: close\r\n\r\n" + body;
}

/// One that says how long it is.
inline QByteArray fileAnswer(const QByteArray& body, const QByteArray& extraHeader = {})
{
    return "HTTP/1.1 200 OK\r\nConnection: close\r\n" + extraHeader +
           "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}
