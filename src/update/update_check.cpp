// SPDX-License-Identifier: MIT
#include "update/update_check.h"

#include "common/data_path.h"
#include "common/json_map.h"
#include "common/package_digest.h"
#include "common/safe_name.h"
#include "common/spark_download.h"
#include "common/spark_http.h"
#include "update/version.h"

#include <QDebug>
#include <QFileInfo>
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

} // namespace

UpdateCheck::UpdateCheck(Spark_Http& http, QString server, QString version)
    : m_http(http), m_server(std::move(server)), m_version(std::move(version))
{
}

UpdateCheck::~UpdateCheck() = default;

void UpdateCheck::start()
{
    const QString folder = m_server + QStringLiteral("/wp-content/uploads/config/");
    m_http.get(programWord(), folder + QStringLiteral("update_Tarn_Hub.json"), false);
    m_http.get(firmwareWord(), folder + QStringLiteral("update_KORA.json"), false);
}

void UpdateCheck::handleProgram(const QString& body)
{
    const QVariantMap build = child(child(jsonToMap(body), "updates"), "windows");
    const QString version = text(build, "latest-version");
    const QString url = text(build, "download-url");
    if (!m_latest.isEmpty() || !isNewerVersion(version, m_version) || !mayDownload(url))
        return;
    const QString name = QUrl::fromEncoded(url.toUtf8(), QUrl::StrictMode).fileName();
    if (name.isEmpty())
        return;
    m_latest = version;
    ++m_jobs;
    const QString folder = dataPath(QStringLiteral("upgrade"));
    const QString target = folder + safeFileName(name);
    if (QFileInfo(target).isFile()) {
        takeInstaller(target);
        return;
    }
    m_installer = std::make_unique<SparkDownload>(url, folder);
    connect(m_installer.get(), &SparkDownload::finished, this, &UpdateCheck::takeInstaller);
    m_installer->start();
}

/// Offers the installer together with what it looks like now, so that another file in its place is
/// noticed later.
void UpdateCheck::takeInstaller(const QString& path)
{
    if (path.isEmpty()) {
        --m_jobs;
        return;
    }
    m_installerDigest = std::make_unique<PackageDigest>(path);
    connect(m_installerDigest.get(), &PackageDigest::ready, this, [this, path] {
        --m_jobs;
        const QString digest = m_installerDigest->md5();
        if (!digest.isEmpty())
            emit installerReady({m_latest, path, digest});
    });
    m_installerDigest->start();
}

void UpdateCheck::handleFirmware(const QString& body)
{
    const QVariantMap package = child(jsonToMap(body), "updates");
    const QString digest = text(package, "MD5").trimmed().toLower();
    const QString url = text(package, "download-url");
    if (m_firmware || digest.isEmpty() || !mayDownload(url))
        return;
    ++m_jobs;
    m_firmware = std::make_unique<SparkDownload>(url, dataPath(QStringLiteral("upgradekora")));
    connect(m_firmware.get(), &SparkDownload::finished, this, [this](const QString& path) {
        --m_jobs;
        if (!path.isEmpty())
            emit firmwareReady(path);
    });
    m_firmware->startChecked(digest);
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
