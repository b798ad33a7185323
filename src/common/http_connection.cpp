// SPDX-License-Identifier: MIT
#include "common/http_connection.h"

#include "common/limits.h"

#include <QNetworkProxy>

namespace
{

constexpr qint64 pieceBytes = 16 * 1024;
constexpr const char* totalLimit = "milliseconds of a whole request";

} // namespace

HttpConnection::HttpConnection(QString host, quint16 port, QObject* parent)
    : QObject(parent), m_host(std::move(host)), m_port(port)
{
    m_socket.setProxy(QNetworkProxy::NoProxy);
    // More than this waits in the kernel, and then at the sender.
    m_socket.setReadBufferSize(pieceBytes);
    m_silence.setSingleShot(true);
    m_total.setSingleShot(true);
    m_idle.setSingleShot(true);
    connect(&m_socket, &QTcpSocket::connected, this, &HttpConnection::send);
    connect(&m_socket, &QTcpSocket::readyRead, this, &HttpConnection::read);
    connect(&m_socket, &QAbstractSocket::errorOccurred, this, &HttpConnection::lost);
    connect(&m_silence, &QTimer::timeout, this, [this] { giveUp(nullptr); });
    connect(&m_total, &QTimer::timeout, this, [this] { giveUp(totalLimit); });
    connect(&m_idle, &QTimer::timeout, this, &HttpConnection::ended);
}

void HttpConnection::ask(const HttpQuestion& question)
{
    m_question = question;
    m_parser = std::make_unique<HttpReplyParser>(question.bodyLimit);
    m_heard = false;
    m_isLate = false;
    m_idle.stop();
    m_silence.start(Limits::HttpSilenceMs);
    m_total.start(question.totalMs);
    if (m_socket.state() == QAbstractSocket::ConnectedState)
        send();
    else
        m_socket.connectToHost(m_host, m_port);
}

void HttpConnection::send()
{
    if (!m_parser)
        return;
    QByteArray host = m_host.toLatin1();
    if (m_port != 80)
        host += ':' + QByteArray::number(m_port);
    m_socket.write("GET " + m_question.target + " HTTP/1.1\r\nHost: " + host +
                   "\r\nContent-Type: application/xhtml+xml;chatset=utf-8"
                   "\r\nConnection: " +
                   (m_question.isStranger ? "close" : "keep-alive") +
                   "\r\nAccept-Encoding: identity"
                   "\r\nAccept-Language: en,*"
                   "\r\nUser-Agent: Mozilla/5.0\r\n\r\n");
}

void HttpConnection::read()
{
    while (m_parser && m_socket.bytesAvailable() > 0) {
        m_heard = true;
        m_silence.start(Limits::HttpSilenceMs);
        const HttpReplyParser::State state = m_parser->feed(m_socket.read(pieceBytes));
        if (state != HttpReplyParser::State::Reading)
            settle(state == HttpReplyParser::State::Done, m_parser->exceeded());
    }
    // Nobody has asked for this.
    if (!m_parser && m_socket.bytesAvailable() > 0)
        m_socket.abort();
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
        m_socket.abort();
        m_socket.connectToHost(m_host, m_port);
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
    HttpAnswer answer{m_question.id, m_heard, m_isLate, 0, {}, exceeded};
    if (whole) {
        answer.status = m_parser->status();
        answer.body = m_parser->body();
    }
    const bool keeps = whole && m_parser->keepsAlive() && !m_question.isStranger;
    m_parser.reset();
    m_used = true;
    if (keeps)
        m_idle.start(Limits::HttpIdleMs);
    else
        m_socket.abort();
    emit answered(answer);
    if (!keeps)
        emit ended();
}
