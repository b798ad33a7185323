// SPDX-License-Identifier: MIT
#include "common/spark_http.h"

#include "common/http_request.h"
#include "common/http_result.h"
#include "common/operation_log.h"
#include "common/spark_download.h"

#include <QEventLoop>
#include <QNetworkReply>
#include <QPointer>
#include <QUuid>

#include <functional>

namespace
{

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

} // namespace

Spark_Http::Spark_Http() = default;

/// Made for the first request: it starts threads of its own, which the window need not wait for.
QNetworkAccessManager& Spark_Http::manager()
{
    if (!m_manager) {
        m_manager = new QNetworkAccessManager(this);
        m_manager->setTransferTimeout(TransferLimitMs);
    }
    return *m_manager;
}

QString Spark_Http::get(const QString& type, const QString& url, bool isblocking)
{
    QNetworkReply* reply = manager().get(httpRequest(url));
    reply->setProperty("type", type);
    reply->setProperty("isblocking", isblocking);
    connect(reply, &QNetworkReply::finished, this, &Spark_Http::R_finished);
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > BodyLimit)
            reply->abort();
    });

    if (!isblocking) {
        const QString id = QUuid::createUuid().toString(QUuid::Id128);
        reply->setProperty("id", id);
        return id;
    }
    QEventLoop loop;
    // Guarded: the program may close, and the loop with it, before the reply has finished.
    reply->setProperty("eventLoop", QVariant::fromValue(QPointer<QObject>(&loop)));
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    return loop.property("body").toString();
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
    return waitFor(download, [&] { download.startChecked(md5); });
}

void Spark_Http::R_finished()
{
    auto* reply = qobject_cast<QNetworkReply*>(sender());
    if (!reply)
        return;
    QString body;
    if (reply->error() == QNetworkReply::NoError && reply->bytesAvailable() <= BodyLimit)
        body = QString::fromUtf8(reply->readAll());

    const QString id = reply->property("id").toString();
    const QString host = reply->request().url().host();
    if (reply->property("isblocking").toBool()) {
        const auto loop = reply->property("eventLoop").value<QPointer<QObject>>();
        if (loop) {
            loop->setProperty("body", body);
            static_cast<QEventLoop*>(loop.data())->quit();
        }
    } else {
        emit S_finished(HttpResult::toMap(reply->property("type").toString(), id, host, body));
    }

    if (!body.isEmpty()) {
        const QString function = QStringLiteral("Spark_Http::R_finished");
        const QString key = QStringLiteral("http-") + host;
        const QString url = reply->request().url().toString();
        writeLog(key, logLine(id + QStringLiteral("  http请求 ") + url, "src/common/spark_http.cpp",
                              __LINE__, function));
        writeLog(key, logLine(id + QStringLiteral("  http请求结果 ") + body,
                              "src/common/spark_http.cpp", __LINE__, function));
    }
    reply->deleteLater();
}
