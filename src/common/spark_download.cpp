// SPDX-License-Identifier: MIT
#include "common/spark_download.h"

#include "common/file_digest.h"
#include "common/safe_name.h"
#include "crash/crash_handler.h"

#include <QDebug>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSaveFile>
#include <QStorageInfo>
#include <QThread>
#include <QUrl>

namespace
{

/// A transfer may take as long as it likes, but a server silent for this long, in milliseconds,
/// has gone.
constexpr int silenceLimitMs = 60000;

using ReplyPointer = std::unique_ptr<QNetworkReply>;

QNetworkRequest requestFor(const QString& url)
{
    QNetworkRequest request(QUrl::fromEncoded(url.toUtf8(), QUrl::StrictMode));
    // As it is, so that its length can be compared with the announced one.
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

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
        return false; // given up
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

/// The length that the server announces, below 0 when it announces none.
qint64 announcedLength(const QNetworkReply& reply)
{
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    return length.isValid() ? length.toLongLong() : -1;
}

/// A connection that is cut is not always reported as an error.
bool isWhole(const QNetworkReply& reply, qint64 received)
{
    const qint64 announced = announcedLength(reply);
    if (announced < 0 || announced == received)
        return true;
    qDebug().noquote() << "下载不完整 " << received << "/" << announced;
    return false;
}

QString hex(const QCryptographicHash& hash)
{
    return QString::fromLatin1(hash.result().toHex());
}

/// The name a server offers for a file, empty when it offers none.
QString offeredName(const QNetworkReply& reply)
{
    return nameInDisposition(reply.rawHeader("content-disposition"));
}

} // namespace

SparkDownload::SparkDownload(QString url, QString folder, QObject* parent)
    : QObject(parent), m_url(std::move(url)), m_folder(std::move(folder))
{
}

SparkDownload::~SparkDownload()
{
    if (!m_thread)
        return;
    m_stop = true;
    m_thread->quit(); // ends the wait for the reply
    m_thread->wait();
}

void SparkDownload::start()
{
    run([this] { return fetch(); });
}

void SparkDownload::startChecked(const FileDigests& digests, const QString& onlyName)
{
    run([this, digests, onlyName] { return fetchChecked(digests, onlyName); });
}

void SparkDownload::startAs(const QString& name, const FileDigests& digests)
{
    run([this, name, digests] { return obtain(name, digests); });
}

void SparkDownload::run(const std::function<QString()>& work)
{
    m_thread.reset(QThread::create([this, work] {
        CrashHandler::coverThread();
        const QString path = work();
        QMetaObject::invokeMethod(this, [this, path] { emit finished(path); });
    }));
    m_thread->setObjectName(QStringLiteral("download"));
    m_thread->start();
}

QString SparkDownload::fetch()
{
    const QString last = QUrl::fromEncoded(m_url.toUtf8(), QUrl::StrictMode).fileName();
    const QString name = last.isEmpty() ? QStringLiteral("download") : safeFileName(last);
    const QString path = freePath(m_folder, name);
    return fetchInto(path, {}) ? path : QString();
}

QString SparkDownload::fetchChecked(const FileDigests& digests, const QString& onlyName)
{
    QString name;
    {
        QNetworkAccessManager manager;
        manager.setTransferTimeout(silenceLimitMs);
        const ReplyPointer head(manager.head(requestFor(m_url)));
        if (!waitForSuccess(*head))
            return QString();
        name = offeredName(*head);
    }
    if (!onlyName.isEmpty() && name != onlyName) {
        qDebug().noquote() << "下载文件名不符 " << name << onlyName;
        return QString();
    }
    return name.isEmpty() ? QString() : obtain(name, digests);
}

QString SparkDownload::obtain(const QString& name, const FileDigests& digests)
{
    const QString path = m_folder + name;
    if (isAlready(path, digests))
        return path;
    if (m_stop)
        return QString();
    QFile::remove(path);
    return fetchInto(path, digests) ? path : QString();
}

bool SparkDownload::isAlready(const QString& path, const FileDigests& digests)
{
    if (!QFileInfo::exists(path))
        return false;
    m_sha256 = fileDigest(path, QCryptographicHash::Sha256, &m_stop);
    return !m_sha256.isEmpty() && (digests.sha256.isEmpty() || digests.sha256 == m_sha256) &&
           (digests.md5.isEmpty() ||
            digests.md5 == fileDigest(path, QCryptographicHash::Md5, &m_stop));
}

/// How many bytes may come.
qint64 SparkDownload::longestFile() const
{
    const QStorageInfo disk(m_folder);
    return disk.isValid() ? qMin(m_sizeLimit, disk.bytesAvailable() - DiskReserve) : m_sizeLimit;
}

/// GETs the file into `path`, writing as the data comes so that a large one never sits in memory.
/// It gets its name when all of it is on the disk, and is what it has to be.
bool SparkDownload::fetchInto(const QString& path, const FileDigests& digests)
{
    QCryptographicHash md5(QCryptographicHash::Md5);
    QCryptographicHash sha256(QCryptographicHash::Sha256);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qDebug().noquote() << "下载文件打开失败 " << file.errorString() << path;
        return false;
    }
    const qint64 longest = longestFile();
    QNetworkAccessManager manager;
    manager.setTransferTimeout(silenceLimitMs);
    const ReplyPointer reply(manager.get(requestFor(m_url)));
    reply->setReadBufferSize(1 << 20);
    qint64 received = 0;
    bool fits = true;
    const auto refuse = [&](const QString& why) {
        if (fits)
            qDebug().noquote() << "下载文件过大 " << path << why;
        fits = false;
        reply->abort();
    };
    const auto drain = [&] {
        const QByteArray data = reply->readAll();
        received += data.size();
        md5.addData(data);
        sha256.addData(data);
        if (received > longest)
            refuse(QString::number(received));
        else if (!isRedirect(*reply) && file.write(data) != data.size())
            refuse(file.errorString());
    };
    QObject::connect(reply.get(), &QNetworkReply::metaDataChanged, reply.get(), [&] {
        if (announcedLength(*reply) > longest)
            refuse(QString::number(announcedLength(*reply)));
    });
    QObject::connect(reply.get(), &QNetworkReply::readyRead, reply.get(), drain);
    if (!waitForSuccess(*reply))
        return false;
    drain();
    if (!fits || !isWhole(*reply, received) || m_stop)
        return false;
    m_sha256 = hex(sha256);
    if ((!digests.md5.isEmpty() && digests.md5 != hex(md5)) ||
        (!digests.sha256.isEmpty() && digests.sha256 != m_sha256)) {
        qDebug().noquote() << "下载文件校验失败 " << path;
        return false;
    }
    if (!file.commit())
        return false;
    qDebug().noquote() << "下载文件完成 " << path;
    return true;
}
