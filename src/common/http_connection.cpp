// SPDX-License-Identifier: MIT
#include "common/http_connection.h"

#include "common/limits.h"

#include <QNetworkProxy>
#include <QSslConfiguration>

namespace
{

constexpr qint64 pieceBytes = 16 * 1024;
constexpr const char* totalLimit = "milliseconds of a whole request";

} // namespace

HttpQuestion HttpQuestion::of(const QUrl& url)
{
    HttpQuestion question;
    question.host = url.host();
    question.isSecure = url.scheme() == QLatin1String("https");
    question.port = quint16(url.port(question.isSecure ? 443 : 80));
    question.target =
        url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::RemoveFragment);
    return question;
}

HttpConnection::HttpConnection(const HttpQuestion& first, QObject* parent)
    : QObject(parent), m_question(first)
{
    if (first.isSecure) {
        auto* socket = new QSslSocket;
        m_socket.reset(socket);
        setUpTls(socket);
    } else {
        m_socket = std::make_unique<QTcpSocket>();
        // More than this waits in the kernel, and then at the sender.
        m_socket->setReadBufferSize(pieceBytes);
        connect(m_socket.get(), &QTcpSocket::connected, this, &HttpConnection::send);
    }
    m_socket->setProxy(QNetworkProxy::NoProxy);
    m_silence.setSingleShot(true);
    m_total.setSingleShot(true);
    m_idle.setSingleShot(true);
    connect(m_socket.get(), &QTcpSocket::readyRead, this, &HttpConnection::read);
    connect(m_socket.get(), &QAbstractSocket::errorOccurred, this, &HttpConnection::lost);
    connect(&m_silence, &QTimer::timeout, this, [this] { giveUp(nullptr); });
    connect(&m_total, &QTimer::timeout, this, [this] { giveUp(totalLimit); });
    connect(&m_idle, &QTimer::timeout, this, &HttpConnection::ended);
}

void HttpConnection::setUpTls(QSslSocket* socket)
{
    if (!m_question.isProven) {
        QSslConfiguration any = socket->sslConfiguration();
        any.setProtocol(QSsl::AnyProtocol);
        any.setPeerVerifyMode(QSslSocket::VerifyNone);
        socket->setSslConfiguration(any);
    }
    connect(socket, &QSslSocket::encrypted, this, &HttpConnection::send);
}

void HttpConnection::connectSocket()
{
    if (auto* secure = qobject_cast<QSslSocket*>(m_socket.get()))
        secure->connectToHostEncrypted(m_question.host, m_question.port);
    else
        m_socket->connectToHost(m_question.host, m_question.port);
}

void HttpConnection::ask(const HttpQuestion& question)
{
    m_question = question;
    m_parser = std::make_unique<HttpReplyParser>(question.bodyLimit, question.sink);
    if (question.isHead)
        m_parser->expectNoBody();
    m_heard = false;
    m_isLate = false;
    m_idle.stop();
    m_silence.start(m_question.silenceMs);
    if (question.totalMs > 0)
        m_total.start(question.totalMs);
    if (m_socket->state() == QAbstractSocket::ConnectedState)
        send();
    else
        connectSocket();
}

void HttpConnection::send()
{
    if (!m_parser)
        return;
    QByteArray host = m_question.host.toLatin1();
    if (m_question.port != (m_question.isSecure ? 443 : 80))
        host += ':' + QByteArray::number(m_question.port);
    m_socket->write((m_question.isHead ? "HEAD " : "GET ") + m_question.target +
                    " HTTP/1.1\r\nHost: " + host +
                    "\r\nContent-Type: application/xhtml+xml;chatset=utf-8"
                    "\r\nConnection: " +
                    (m_question.isStranger ? "close" : "keep-alive") +
                    "\r\nAccept-Encoding: identity"
                    "\r\nAccept-Language: en,*"
                    "\r\nUser-Agent: Mozilla/5.0\r\n\r\n");
}

void HttpConnection::read()
{
    while (m_parser && m_socket->bytesAvailable() > 0) {
        m_heard = true;
        m_silence.start(m_question.silenceMs);
        const HttpReplyParser::State state = m_parser->feed(m_socket->read(pieceBytes));
        if (state != HttpReplyParser::State::Reading)
            settle(state == HttpReplyParser::State::Done, m_parser->exceeded());
    }
    // Nobody has asked for this.
    if (!m_parser && m_socket->bytesAvailable() > 0)
        m_socket->abort();
}

/// Closed by the other side, refused, or never there.
void HttpConnection::lost()
{
    read();
    if (!m_parser) {
        emit ended();
        return;
    }
    if (m_used && !m_heard) {
        // It closed an idle connection in the moment in which it was asked.
        m_used = false;
        m_socket->abort();
        connectSocket();
        return;
    }
    settle(m_parser->close() == HttpReplyParser::State::Done);
}

void HttpConnection::giveUp(const char* exceeded)
{
    m_isLate = true;
    settle(false, exceeded);
}

void HttpConnection::settle(bool whole, const char* exceeded)
{
    m_silence.stop();
    m_total.stop();
    HttpAnswer answer{m_question.id, m_heard, m_isLate, 0, {}, {}, exceeded};
    if (whole) {
        answer.status = m_parser->status();
        answer.body = m_parser->body();
        answer.disposition = m_parser->disposition();
    }
    const bool keeps = whole && m_parser->keepsAlive() && !m_question.isStranger;
    m_parser.reset();
    m_used = true;
    if (keeps)
        m_idle.start(Limits::HttpIdleMs);
    else
        m_socket->abort();
    emit answered(answer);
    if (!keeps)
        emit ended();
}
