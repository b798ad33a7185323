// SPDX-License-Identifier: MIT
#pragma once

#include "common/http_reply_parser.h"
#include "common/limits.h"

#include <QObject>
#include <QSslSocket>
#include <QTimer>
#include <QUrl>

#include <memory>

/// One thing to be asked of a server.
struct HttpQuestion {
    /// That for `url`, which is already encoded.
    static HttpQuestion of(const QUrl& url);

    quint64 id = 0;
    QString host;
    quint16 port = 80;
    bool isSecure = false; ///< over TLS
    bool isProven = false; ///< then: only of whom its certificate proves to be this host
    QByteArray target;     ///< path and query, encoded
    qint64 bodyLimit = 0;  ///< bytes
    int totalMs = 0;       ///< for all of it; 0: as long as it goes on
    int silenceMs = Limits::HttpSilenceMs;
    bool isHead = false;        ///< only what stands before the body is asked for
    HttpReplyParser::Sink sink; ///< takes the body, in the connection's thread
    bool isStranger = false;    ///< nobody says that it is a box
    bool goesFirst = false;     ///< somebody waits for it
};

struct HttpAnswer {
    quint64 id = 0;
    bool heard = false;  ///< somebody is there, whatever he said
    bool isLate = false; ///< nothing came, or not all of it, in time
    /// 0: not a whole reply in time, or more of it than is wanted.
    int status = 0;
    QByteArray body;
    QByteArray disposition; ///< what the server says of the body's name
    /// Which limit it went over, in plain words; null when none.
    const char* exceeded = nullptr;
};
Q_DECLARE_METATYPE(HttpAnswer)

/// One connection to one server, which is asked one thing at a time. It lives in the thread of
/// whoever made it and needs its event loop.
class HttpConnection : public QObject
{
    Q_OBJECT

public:
    /// To the server of which `first` will be asked.
    HttpConnection(const HttpQuestion& first, QObject* parent);

    /// Only while it is idle.
    void ask(const HttpQuestion& question);
    bool isIdle() const { return !m_parser; }
    QString host() const { return m_question.host; }

signals:
    /// The answer to the last question: every question has one.
    void answered(const HttpAnswer& answer);
    /// It is of no use any more: closed by one of the two, or idle for too long.
    void ended();

private:
    void setUpTls(QSslSocket* socket);
    void connectSocket();
    void send();
    void read();
    void lost();
    void giveUp(const char* exceeded);
    void settle(bool whole, const char* exceeded = nullptr);

    std::unique_ptr<QTcpSocket> m_socket;
    QTimer m_silence;
    QTimer m_total;
    QTimer m_idle;
    HttpQuestion m_question;                   ///< the last one
    std::unique_ptr<HttpReplyParser> m_parser; ///< while something is asked
    bool m_used = false;  ///< it has answered before, so that its server may just have closed it
    bool m_heard = false; ///< something of this answer has arrived
    bool m_isLate = false;
};
