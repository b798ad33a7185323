// SPDX-License-Identifier: MIT
#include "common/spark_http.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "common/limit_log.h"
#include "common/operation_log.h"
#include "common/spark_download.h"

#include <QEventLoop>
#include <QTimer>
#include <QUrl>
#include <QUuid>

#include <functional>

namespace
{

/// From this HTTP status on a reply has no content that anybody asked for.
constexpr int firstError = 400;

/// Serves events until `download`, which `start` starts, has ended.
QString waitFor(SparkDownload& download, const std::function<void()>& start)
{
    QString path;
    QEventLoop loop;
    QObject::connect(&download, &SparkDownload::finished, &loop, [&](const QString& written) {
        path = written;
        loop.quit();
    });
    start();
    loop.exec();
    return path;
}

/// `url` is already encoded.
QUrl urlOf(const QString& url)
{
    return QUrl::fromEncoded(url.toUtf8(), QUrl::StrictMode);
}

qint64 bodyLimit(const QString& url, Spark_Http::Peer peer)
{
    if (peer == Spark_Http::Peer::Stranger)
        return Limits::StrangerBodyBytes;
    const bool isList =
        url.endsWith(BoxProtocol::RecordList) || url.endsWith(BoxProtocol::NDIDecodeList);
    return isList ? Limits::ListBodyBytes : Limits::ValueBodyBytes;
}

/// Requests to one of these share its connections.
QString serverKey(const QUrl& url)
{
    return url.scheme() + QLatin1Char(' ') + url.authority();
}

} // namespace

Spark_Http::Spark_Http()
{
    connect(&m_network, &HttpNetwork::answered, this, &Spark_Http::R_finished);
}

QString Spark_Http::get(const QString& type, const QString& url, bool isblocking, Peer peer)
{
    Request request{type, url, peer, isblocking, isblocking, {}, nullptr};
    if (!isblocking) {
        const QString id = QUuid::createUuid().toString(QUuid::Id128);
        request.ids << id;
        enqueue(request);
        return id;
    }
    QEventLoop loop;
    request.loop = &loop;
    enqueue(request);
    // Also when what was sent before it holds all of its server's connections.
    QTimer::singleShot(Limits::HttpBlockingMs, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    return loop.property("body").toString();
}

QString Spark_Http::getFirst(const QString& type, const QString& url)
{
    const QString id = QUuid::createUuid().toString(QUuid::Id128);
    enqueue({type, url, Peer::Box, false, true, {id}, nullptr});
    return id;
}

/// True when `request` need not wait in a place of its own. Strangers are asked one thing once.
bool Spark_Http::joinWaiting(Server& server, const Request& request)
{
    for (Request& sent : server.sent) {
        if (request.peer != Peer::Stranger || sent.type != request.type || sent.url != request.url)
            continue;
        sent.ids << request.ids;
        return true;
    }
    for (Request& waiting : server.waiting) {
        if (waiting.isblocking || waiting.type != request.type || waiting.url != request.url)
            continue;
        waiting.ids << request.ids;
        return true;
    }
    return false;
}

void Spark_Http::enqueue(const Request& request)
{
    const QString key = serverKey(urlOf(request.url));
    Server& server = m_servers[key];
    if (request.goesFirst) {
        server.waiting.prepend(request);
    } else if (joinWaiting(server, request)) {
        return;
    } else if (server.waiting.size() < MostWaiting) {
        server.waiting << request;
    } else {
        failSoon(request);
        return;
    }
    sendNext(key);
}

void Spark_Http::failSoon(const Request& request)
{
    const QString host = urlOf(request.url).host();
    QTimer::singleShot(0, this, [this, request, host] { answer(request, host, QString(), 0); });
}

/// Nobody is there: each of them would only wait for its own limit.
void Spark_Http::giveUpWaiting(Server& server)
{
    for (const Request& request : qAsConst(server.waiting))
        failSoon(request);
    server.waiting.clear();
    server.unanswered = 0;
}

void Spark_Http::sendNext(const QString& serverKey)
{
    Server& server = m_servers[serverKey];
    // Fewer while it does not answer, so that it has six tries in all to show that it is there.
    // What somebody waits for does not wait for them.
    const auto most = [&server] { return MostAtOnce + (server.waiting.first().goesFirst ? 1 : 0); };
    while (!server.waiting.isEmpty() && server.sent.size() + server.unanswered < most()) {
        const Request request = server.waiting.takeFirst();
        if (!request.isblocking || request.loop)
            send(server, request);
    }
    if (server.sent.isEmpty())
        m_servers.remove(serverKey);
}

void Spark_Http::send(Server& server, const Request& request)
{
    const quint64 number = ++m_lastNumber;
    const QUrl url = urlOf(request.url);
    server.sent.insert(number, request);
    m_numbers.insert(number, serverKey(url));
    HttpQuestion question = HttpQuestion::of(url);
    question.id = number;
    question.isProven = question.isSecure && request.peer == Peer::Server;
    question.bodyLimit = bodyLimit(request.url, request.peer);
    question.isStranger = request.peer == Peer::Stranger;
    question.goesFirst = request.goesFirst;
    question.totalMs = Limits::HttpTotalMs;
    if (request.isblocking)
        question.totalMs = Limits::HttpBlockingMs;
    else if (question.isStranger)
        question.totalMs = Limits::HttpStrangerMs;
    m_network.ask(question);
}

QString Spark_Http::downloadFile(const QString& url, const QString& savePath)
{
    SparkDownload download(url, savePath);
    return waitFor(download, [&] { download.start(); });
}

QString Spark_Http::downloadFileChecked(const QString& url, const QString& savePath,
                                        const QString& md5)
{
    SparkDownload download(url, savePath);
    return waitFor(download, [&] { download.startChecked({md5, {}}); });
}

void Spark_Http::R_finished(const HttpAnswer& answered)
{
    const QString body =
        answered.status < firstError ? QString::fromUtf8(answered.body) : QString();
    // Before anybody hears of it, as they may wait.
    const QString key = m_numbers.take(answered.id);
    Server& server = m_servers[key];
    const Request request = server.sent.take(answered.id);
    server.unanswered = answered.heard ? 0 : server.unanswered + 1;
    if (server.unanswered >= MostAtOnce)
        giveUpWaiting(server);
    sendNext(key);
    const QUrl url = urlOf(request.url);
    if (answered.exceeded)
        limitReached(url.host(), QString::fromLatin1(answered.exceeded));
    if (!body.isEmpty() && isNews(request, url.host()))
        log(request, url, body);
    answer(request, url.host(), body, answered.status);
}

/// Strangers are asked again and again: the first answer of each is enough. A box at the address
/// makes whoever is found there after it somebody new.
bool Spark_Http::isNews(const Request& request, const QString& host)
{
    if (request.peer == Peer::Box) {
        m_loggedStrangers.remove(host);
        return true;
    }
    if (!m_loggedStrangers.contains(host) && m_loggedStrangers.size() >= Limits::StrangersLogged)
        return false;
    QStringList& types = m_loggedStrangers[host];
    const bool isNew = !types.contains(request.type);
    if (isNew)
        types << request.type;
    return isNew;
}

void Spark_Http::log(const Request& request, const QUrl& url, const QString& body) const
{
    const QString id = request.ids.value(0);
    const QString function = QStringLiteral("Spark_Http::R_finished");
    const QString name = QStringLiteral("http-") + url.host();
    writeLog(name, logLine(id + QStringLiteral("  http请求 ") + url.toString(),
                           "src/common/spark_http.cpp", __LINE__, function));
    writeLog(name, logLine(id + QStringLiteral("  http请求结果 ") + body,
                           "src/common/spark_http.cpp", __LINE__, function));
}

void Spark_Http::answer(const Request& request, const QString& host, const QString& body,
                        int httpStatus)
{
    if (request.loop) {
        request.loop->setProperty("body", body);
        request.loop->quit();
    }
    for (const QString& id : request.ids)
        emit S_finished(HttpResult::toMap(request.type, id, host, body, httpStatus));
}
