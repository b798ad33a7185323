// SPDX-License-Identifier: MIT
#include "common/spark_download.h"

#include "common/file_digest.h"
#include "common/http_connection.h"
#include "common/limits.h"
#include "common/safe_name.h"
#include "crash/crash_handler.h"

#include <QDebug>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStorageInfo>
#include <QThread>
#include <QUrl>

#include <optional>

namespace
{

/// A transfer may take as long as it likes, but a server silent for this long, in milliseconds,
/// has gone.
constexpr int silenceLimitMs = 60000;

/// Nothing of a redirect is followed, and a certificate has to prove who sends the file.
HttpQuestion questionFor(const QString& url)
{
    HttpQuestion question = HttpQuestion::of(QUrl::fromEncoded(url.toUtf8(), QUrl::StrictMode));
    question.isProven = question.isSecure;
    question.silenceMs = silenceLimitMs;
    return question;
}

/// Waits for the answer, unless the thread is told to end; logs when there is none to use. Nobody
/// else has the connection.
std::optional<HttpAnswer> ask(const HttpQuestion& question)
{
    HttpConnection connection(question, nullptr);
    std::optional<HttpAnswer> answer;
    QEventLoop loop;
    QObject::connect(&connection, &HttpConnection::answered, &loop, [&](const HttpAnswer& told) {
        answer = told;
        loop.quit();
    });
    connection.ask(question);
    if (!answer)
        loop.exec();
    if (!answer)
        return std::nullopt; // given up
    if (answer->status >= 200 && answer->status <= 299)
        return answer;
    qDebug().noquote() << "下载错误 " << question.host << question.target << answer->status
                       << (answer->exceeded ? answer->exceeded : "");
    return std::nullopt;
}

QString hex(const QCryptographicHash& hash)
{
    return QString::fromLatin1(hash.result().toHex());
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
    HttpQuestion question = questionFor(m_url);
    question.isHead = true;
    question.totalMs = Limits::HttpTotalMs;
    if (const auto answer = ask(question))
        name = nameInDisposition(answer->disposition);
    else
        return QString();
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
    HttpQuestion question = questionFor(m_url);
    question.bodyLimit = qMax<qint64>(0, longestFile());
    question.sink = [&](const QByteArray& piece) {
        md5.addData(piece);
        sha256.addData(piece);
        return file.write(piece) == piece.size();
    };
    if (!ask(question) || m_stop)
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
