// SPDX-License-Identifier: MIT
#include "update/update_check.h"

#include "common/background.h"
#include "common/data_path.h"
#include "common/file_digest.h"
#include "common/json_map.h"
#include "common/safe_name.h"
#include "common/spark_http.h"
#include "update/version.h"

#include <QDebug>
#include <QFileInfo>
#include <QPointer>
#include <QUrl>

namespace
{

QVariantMap child(const QVariantMap& map, const char* name)
{
    return map.value(QLatin1String(name)).toMap();
}

QString text(const QVariantMap& map, const char* name)
{
    return map.value(QLatin1String(name)).toString();
}

QString digestOf(const QString& path)
{
    QString digest;
    runInBackground([&] { digest = fileMd5(path); });
    return digest;
}

} // namespace

UpdateCheck::UpdateCheck(Spark_Http& http, QString server, QString version)
    : m_http(http), m_server(std::move(server)), m_version(std::move(version))
{
}

void UpdateCheck::start()
{
    const QString folder = m_server + QStringLiteral("/wp-content/uploads/config/");
    m_http.get(QStringLiteral("toupgrade"), folder + QStringLiteral("update_Tarn_Hub.json"), false);
    m_http.get(QStringLiteral("toupgradekora"), folder + QStringLiteral("update_KORA.json"), false);
}

void UpdateCheck::handleProgram(const QString& body)
{
    const QVariantMap build = child(child(jsonToMap(body), "updates"), "windows");
    const QString version = text(build, "latest-version");
    const QString url = text(build, "download-url");
    if (!isNewerVersion(version, m_version) || !mayDownload(url))
        return;
    const QString name = QUrl::fromEncoded(url.toUtf8(), QUrl::StrictMode).fileName();
    if (name.isEmpty())
        return;
    const QPointer<UpdateCheck> self(this);
    const QString folder = dataPath(QStringLiteral("upgrade"));
    QString target = folder + safeFileName(name);
    if (!QFileInfo::exists(target))
        target = m_http.downloadFile(url, folder);
    const QString digest = target.isEmpty() ? QString() : digestOf(target);
    if (self && !digest.isEmpty())
        emit installerReady({version, target, digest});
}

void UpdateCheck::handleFirmware(const QString& body)
{
    const QVariantMap package = child(jsonToMap(body), "updates");
    const QString digest = text(package, "MD5").trimmed().toLower();
    const QString url = text(package, "download-url");
    if (digest.isEmpty() || !mayDownload(url))
        return;
    const QPointer<UpdateCheck> self(this);
    const QString path =
        m_http.downloadFileChecked(url, dataPath(QStringLiteral("upgradekora")), digest);
    if (self && !path.isEmpty())
        emit firmwareReady(path);
}

/// A descriptor names any address. Only web addresses are followed, and one that came encrypted
/// does not lead to what anyone on the way could replace.
bool UpdateCheck::mayDownload(const QString& url) const
{
    const QUrl address(url, QUrl::StrictMode);
    const QString scheme = address.scheme().toLower();
    const bool encrypted = scheme == QLatin1String("https");
    const bool allowed =
        address.isValid() && !address.host().isEmpty() &&
        (encrypted || (scheme == QLatin1String("http") &&
                       !m_server.startsWith(QLatin1String("https:"), Qt::CaseInsensitive)));
    if (!allowed)
        qDebug().noquote() << "更新地址无效 " << url.left(200);
    return allowed;
}
