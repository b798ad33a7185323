// SPDX-License-Identifier: MIT
#pragma once

#include "common/http_network.h"
#include "common/limits.h"
#include "common/uisingleton.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class QEventLoop;

/// Every plain GET of the program: parameter reads from boxes, the web page probe, update
/// descriptors and downloads. GUI thread only.
///
/// A request that fails in any way ends with an empty body. A server is asked a few things at a
/// time, in the order of asking; what waits for its turn is asked once, however often it was asked
/// for meanwhile, and fails with what was sent before it when that all stays without an answer.
class Spark_Http : public QObject, public UISingleton<Spark_Http>
{
    Q_OBJECT

public:
    /// The longest time without data, in milliseconds, before a request counts as failed. It begins
    /// when the request is sent.
    static constexpr int TransferLimitMs = Limits::HttpSilenceMs;
    /// Of a whole request, in milliseconds.
    static constexpr int RequestLimitMs = Limits::HttpTotalMs;
    /// The most requests that one server is sent at a time, each over a connection of its own; one
    /// more for what somebody waits for.
    static constexpr int MostAtOnce = 6;
    /// The most that wait for one server; what comes on top fails at once.
    static constexpr int MostWaiting = 400;
    /// Who is asked.
    enum class Peer {
        Box,
        Stranger, ///< nobody has said yet that it is a box; it gets connections apart
        Server,   ///< one on the internet, which has to prove by its certificate that it is
    };

    /// Requests `url` (already encoded). Non-blocking: returns the request's id at once, and the
    /// answer comes by S_finished. Blocking: goes before what waits, serves events other than user
    /// input, and returns the body. `type` is the routing word of the answer.
    QString get(const QString& type, const QString& url, bool isblocking, Peer peer = Peer::Box);
    /// As non-blocking get(), but goes before what waits.
    QString getFirst(const QString& type, const QString& url);

    /// Blocking, serving events: SparkDownload::start(). Returns the path written, empty on
    /// failure. `savePath` is a folder and ends in "/".
    QString downloadFile(const QString& url, const QString& savePath);

    /// Blocking, serving events: SparkDownload::startChecked(). Returns the path, empty on
    /// failure.
    QString downloadFileChecked(const QString& url, const QString& savePath, const QString& md5);

signals:
    /// The answer of one non-blocking request: "type", "id", "deviceip", "body", all text.
    void S_finished(QVariantMap map);

private slots:
    void R_finished(const HttpAnswer& answered);

private:
    friend class UISingleton<Spark_Http>;
    Spark_Http();

    /// What is asked once for all who wait for it: those with these ids, or the one with a loop.
    struct Request {
        QString type;
        QString url;
        Peer peer = Peer::Box;
        bool isblocking = false;
        bool goesFirst = false;
        QStringList ids;
        QPointer<QEventLoop> loop; // guarded: the program may close, and the loop with it
    };
    struct Server {
        QList<Request> waiting;
        QHash<quint64, Request> sent; ///< by their number
        int unanswered = 0;           ///< of those sent last, one after the other
    };

    bool joinWaiting(Server& server, const Request& request);
    void enqueue(const Request& request);
    void sendNext(const QString& serverKey);
    void send(Server& server, const Request& request);
    bool isNews(const Request& request, const QString& host);
    void log(const Request& request, const QUrl& url, const QString& body) const;
    void giveUpWaiting(Server& server);
    void failSoon(const Request& request);
    void answer(const Request& request, const QString& host, const QString& body, int httpStatus);

    HttpNetwork m_network;
    QHash<QString, Server> m_servers;
    QHash<quint64, QString> m_numbers; ///< of what is sent, and the server's key
    quint64 m_lastNumber = 0;
    QHash<QString, QStringList> m_loggedStrangers; ///< by address: the types of what they answered
};
