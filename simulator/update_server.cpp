// SPDX-License-Identifier: MIT
#include "simulator/update_server.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryFile>
#include <QUrl>

namespace sim
{
namespace
{

constexpr int mostRequests = 1000;
constexpr int firmwareBytes = 2 * 1024 * 1024;

HttpReply json(const QJsonObject& object)
{
    HttpReply reply;
    reply.body = QJsonDocument(object).toJson();
    return reply;
}

/// Bytes that are the same each time and do not repeat within a package.
QByteArray firmware()
{
    QByteArray bytes;
    bytes.reserve(firmwareBytes);
    quint32 state = 20260623;
    while (bytes.size() < firmwareBytes) {
        state = state * 1664525 + 1013904223;
        bytes.append(char(state >> 24));
    }
    return bytes;
}

QString sha256(const QByteArray& content)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
}

/// Base64; empty when there is no key in the file.
QByteArray signature(const QByteArray& text, const QString& keyFile)
{
    QTemporaryFile signedText;
    if (!signedText.open() || signedText.write(text) != text.size() || !signedText.flush())
        return QByteArray();
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {QStringLiteral("pkeyutl"), QStringLiteral("-sign"), QStringLiteral("-rawin"),
                   QStringLiteral("-inkey"), keyFile, QStringLiteral("-in"),
                   signedText.fileName()});
    openssl.waitForFinished();
    return openssl.readAllStandardOutput().toBase64();
}

} // namespace

UpdateServer::UpdateServer(QString address, quint16 port)
    : m_address(std::move(address))
    , m_port(port)
    , m_server(m_address, port,
               {[this](const HttpRequest& request) { return answer(request); }, {}, {}})
{
    m_others.status = 404;
}

QString UpdateServer::url(const QString& path) const
{
    return QStringLiteral("http://%1:%2%3").arg(m_address).arg(m_port).arg(path);
}

void UpdateServer::set(const QString& path, const HttpReply& reply)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_replies.insert(path, reply);
}

void UpdateServer::setOthers(const HttpReply& reply)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_others = reply;
}

HttpReply UpdateServer::file(const QByteArray& content, const QString& offeredName)
{
    HttpReply reply;
    reply.type = "application/octet-stream";
    reply.body = content;
    if (!offeredName.isEmpty()) {
        reply.headers.append(
            {"Content-Disposition",
             QStringLiteral("attachment; filename=\"%1\"").arg(offeredName).toUtf8()});
    }
    return reply;
}

void UpdateServer::signWith(const QString& keyFile, Lie lie)
{
    m_keyFile = keyFile;
    m_lie = lie;
}

QJsonObject UpdateServer::signedFields(const QString& kind, const QString& version,
                                       const QString& downloadUrl) const
{
    if (m_keyFile.isEmpty())
        return {};
    const QUrl url(downloadUrl);
    QString digest;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        digest = sha256(m_replies.value(url.path(), m_others).body);
    }
    const auto told = [this](Lie lie, const QString& truth, const char* other) {
        return m_lie == lie ? QString::fromLatin1(other) : truth;
    };
    const QStringList lines{QStringLiteral("Tarn Hub update 1"), told(Lie::Kind, kind, "other"),
                            told(Lie::Version, version, "9.9.9"),
                            told(Lie::Name, url.fileName(), "other.exe"),
                            m_lie == Lie::Digest ? sha256("other") : digest};
    const QByteArray text = (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
    return {{QStringLiteral("sha256"), lines.last()},
            {QStringLiteral("signature"), QString::fromLatin1(signature(text, m_keyFile))}};
}

void UpdateServer::offerProgram(const QString& version, const QString& downloadUrl)
{
    QJsonObject build = signedFields(QStringLiteral("program"), version, downloadUrl);
    build.insert(QStringLiteral("latest-version"), version);
    build.insert(QStringLiteral("download-url"), downloadUrl);
    set(programPath(),
        json({{QStringLiteral("updates"), QJsonObject{{QStringLiteral("windows"), build}}}}));
}

void UpdateServer::offerFirmware(const QString& md5, const QString& downloadUrl)
{
    QJsonObject package = signedFields(QStringLiteral("firmware"), QString(), downloadUrl);
    package.insert(QStringLiteral("MD5"), md5);
    package.insert(QStringLiteral("download-url"), downloadUrl);
    set(firmwarePath(), json({{QStringLiteral("updates"), package}}));
}

void UpdateServer::furnish(const QString& programVersion)
{
    const QByteArray content = firmware();
    const QString name = QStringLiteral("KORA_1.2.0.623.dat");
    set(QLatin1Char('/') + name, file(content, name));
    offerProgram(programVersion, url(QStringLiteral("/Tarn_Hub_setup.exe")));
    offerFirmware(
        QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex()),
        url(QLatin1Char('/') + name));
}

QStringList UpdateServer::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

HttpReply UpdateServer::answer(const HttpRequest& request)
{
    const QString path = QString::fromUtf8(request.path);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_requests.size() < mostRequests)
        m_requests << QString::fromLatin1(request.method) + QLatin1Char(' ') + path;
    return m_replies.value(path, m_others);
}

} // namespace sim
