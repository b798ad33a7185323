// SPDX-License-Identifier: MIT
// The blocking downloads of Spark_Http.
#include "common/spark_http.h"

#include "common/background.h"
#include "common/file_digest.h"
#include "common/http_request.h"
#include "common/safe_name.h"

#include <QDebug>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QNetworkReply>
#include <QUrl>

#include <memory>

namespace
{

/// A transfer may take as long as it likes, but a server silent for this long, in milliseconds,
/// has gone.
constexpr int SilenceLimitMs = 60000;

using ReplyPointer = std::unique_ptr<QNetworkReply>;

bool isRedirect(const QNetworkReply& reply)
{
    switch (reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt()) {
    case 301:
    case 302:
    case 303:
    case 305:
    case 307:
    case 308:
        return true;
    default:
        return false;
    }
}

/// Waits until `reply` has finished; logs and returns false when there is nothing to keep.
bool waitForSuccess(QNetworkReply& reply)
{
    QEventLoop loop;
    QObject::connect(&reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply.isFinished())
        loop.exec();
    if (!reply.isFinished())
        return false; // the program is closing
    if (reply.error() != QNetworkReply::NoError) {
        qDebug().noquote() << "下载错误 " << reply.url().toEncoded() << reply.errorString();
        return false;
    }
    if (isRedirect(reply)) {
        qDebug().noquote() << "下载请求 重定向 ";
        return false;
    }
    return true;
}

/// A connection that is cut is not always reported as an error.
bool isWhole(const QNetworkReply& reply, qint64 received)
{
    const QVariant announced = reply.header(QNetworkRequest::ContentLengthHeader);
    if (!announced.isValid() || announced.toLongLong() == received)
        return true;
    qDebug().noquote() << "下载不完整 " << received << "/" << announced.toLongLong();
    return false;
}

/// GETs `url` into `path`, writing as the data comes so that a large file never sits in memory. No
/// half file stays behind.
bool fetchInto(QNetworkAccessManager& manager, const QString& url, const QString& path)
{
    const QString partPath = path + QStringLiteral(".part");
    QFile part(partPath);
    if (!part.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        qDebug().noquote() << "下载文件打开失败 " << part.errorString() << path;
        return false;
    }
    QNetworkRequest request = httpRequest(url);
    // As it is, so that its length can be compared with the announced one.
    request.setRawHeader("Accept-Encoding", "identity");
    const ReplyPointer reply(manager.get(request));
    reply->setReadBufferSize(1 << 20);
    reply->setProperty("filepath", path);
    bool written = true;
    const auto drain = [&] {
        const QByteArray data = reply->readAll();
        if (!isRedirect(*reply) && part.write(data) != data.size()) {
            written = false;
            reply->abort();
        }
    };
    QObject::connect(reply.get(), &QNetworkReply::readyRead, reply.get(), drain);
    bool received = waitForSuccess(*reply);
    if (received)
        drain();
    received = received && isWhole(*reply, part.size());
    part.close();
    QFile::remove(received && written ? path : partPath);
    if (!received || !written || !part.rename(path)) {
        QFile::remove(partPath);
        return false;
    }
    qDebug().noquote() << "下载文件完成 " << path;
    return true;
}

QString freePath(const QString& folder, const QString& name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const QString base = dot < 0 ? name : name.left(dot);
    const QString suffix = dot < 0 ? QString() : name.mid(dot);
    QString path = folder + base + suffix;
    for (int n = 0; QFileInfo::exists(path); ++n)
        path = folder + base + QString::number(n) + suffix;
    return path;
}

/// The name a server offers for a file, empty when it offers none.
QString offeredName(const QNetworkReply& reply)
{
    const QString header = QString::fromUtf8(reply.rawHeader("content-disposition"));
    const QString mark = QStringLiteral("filename=");
    const int at = header.indexOf(mark);
    if (at < 0)
        return QString();
    QString name = header.mid(at + mark.size()).section(QLatin1Char(';'), 0, 0).trimmed();
    name.remove(QLatin1Char('"'));
    return name.isEmpty() ? QString() : safeFileName(name);
}

QString digestInBackground(const QString& path)
{
    QString digest;
    runInBackground([&] { digest = fileMd5(path); });
    return digest;
}

} // namespace

QString Spark_Http::downloadFile(const QString& url, const QString& savePath)
{
    QNetworkAccessManager manager;
    manager.setTransferTimeout(SilenceLimitMs);
    QString name = QUrl::fromEncoded(url.toUtf8(), QUrl::StrictMode).fileName();
    name = name.isEmpty() ? QStringLiteral("download") : safeFileName(name);
    const QString path = freePath(savePath, name);
    return fetchInto(manager, url, path) ? path : QString();
}

QString Spark_Http::downloadFileChecked(const QString& url, const QString& savePath,
                                        const QString& md5)
{
    QNetworkAccessManager manager;
    manager.setTransferTimeout(SilenceLimitMs);
    const ReplyPointer head(manager.head(httpRequest(url)));
    head->setProperty("savePath", savePath);
    if (!waitForSuccess(*head))
        return QString();
    const QString name = offeredName(*head);
    if (name.isEmpty())
        return QString();

    const QString path = savePath + name;
    if (QFileInfo::exists(path)) {
        if (digestInBackground(path) == md5)
            return path;
        QFile::remove(path);
    }
    if (!fetchInto(manager, url, path))
        return QString();
    if (digestInBackground(path) == md5)
        return path;
    QFile::remove(path);
    return QString();
}
