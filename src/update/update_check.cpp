// SPDX-License-Identifier: MIT
#include "update/update_check.h"

#include "common/data_path.h"
#include "common/loose_thread.h"
#include "common/operation_log.h"
#include "common/safe_name.h"
#include "common/spark_download.h"
#include "common/spark_http.h"
#include "update/update_signature.h"
#include "update/version.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace
{

/// Digits of the digest in the name of an installer: enough to tell two of the same version apart.
constexpr int digitsInName = 16;

QString installerFolder()
{
    return dataPath(QStringLiteral("upgrade"));
}

QString firmwareFolder()
{
    return dataPath(QStringLiteral("upgradekora"));
}

/// A name that no other version has, whatever the server calls the file.
QString installerName(const PackageOffer& offer)
{
    QStringList parts{offer.version, offer.sha256.left(digitsInName), offer.name};
    parts.removeAll(QString());
    return safeFileName(parts.join(QLatin1Char('_')));
}

/// Takes out of `folder` what earlier downloads have left there, but not `kept`.
std::unique_ptr<LooseThread> tidying(const QString& folder, const QString& kept)
{
    return std::make_unique<LooseThread>(
        QStringLiteral("packages"), [folder, kept](const std::atomic<bool>& stop) {
            const QStringList files =
                QDir(folder).entryList(QDir::Files | QDir::System | QDir::Hidden);
            for (const QString& file : files) {
                // Earlier versions of this program kept their reports beside the installers, of
                // which none is called so.
                const bool isReport =
                    folder == installerFolder() && file.startsWith(QLatin1String("upgrade_"));
                if (!isReport && file != kept && !stop)
                    QFile::remove(folder + file);
            }
            return QString();
        });
}

void tell(const QString& event, int line, const char* function)
{
    qDebug().noquote() << event;
    writeLog(QStringLiteral("update"),
             logLine(event, "src/update/update_check.cpp", line,
                     QStringLiteral("UpdateCheck::") + QLatin1String(function)));
}

} // namespace

UpdateCheck::UpdateCheck(Spark_Http& http, UpdateSource source, QString version)
    : m_http(http), m_source(std::move(source)), m_version(std::move(version))
{
}

UpdateCheck::~UpdateCheck() = default;

void UpdateCheck::start()
{
    const QString folder = m_source.server + QStringLiteral("/wp-content/uploads/config/");
    m_http.get(programWord(), folder + QStringLiteral("update_Tarn_Hub.json"), false,
               Spark_Http::Peer::Server);
    m_http.get(firmwareWord(), folder + QStringLiteral("update_KORA.json"), false,
               Spark_Http::Peer::Server);
}

void UpdateCheck::handleProgram(const QString& body)
{
    const PackageOffer offer = readProgramOffer(body);
    if (m_hasProgram || body.isEmpty() || !mayFetch(offer))
        return;
    const bool isNewer = isNewerVersion(offer.version, m_version);
    if (isNewer)
        m_latest = offer;
    m_hasProgram = true;
    ++m_jobs;
    m_programTidying = tidying(installerFolder(), isNewer ? installerName(offer) : QString());
    connect(m_programTidying.get(), &LooseThread::done, this, &UpdateCheck::fetchInstaller);
    m_programTidying->start();
}

void UpdateCheck::fetchInstaller()
{
    if (m_latest.version.isEmpty()) {
        m_hasProgram = false;
        --m_jobs;
        return;
    }
    m_installer = std::make_unique<SparkDownload>(m_latest.url, installerFolder());
    connect(m_installer.get(), &SparkDownload::finished, this, &UpdateCheck::takeInstaller);
    m_installer->startAs(installerName(m_latest), {{}, m_latest.sha256});
}

void UpdateCheck::takeInstaller(const QString& path)
{
    --m_jobs;
    if (path.isEmpty())
        return;
    emit installerReady({m_latest.version, m_latest.name, QUrl(m_source.server).authority(), path,
                         m_installer->sha256()});
}

void UpdateCheck::handleFirmware(const QString& body)
{
    const PackageOffer offer = readFirmwareOffer(body);
    if (m_firmware || body.isEmpty() || !mayFetch(offer))
        return;
    ++m_jobs;
    m_firmware = std::make_unique<SparkDownload>(offer.url, firmwareFolder());
    connect(m_firmware.get(), &SparkDownload::finished, this, &UpdateCheck::takeFirmware);
    // What is signed is the name too: a box's version is judged by it.
    m_firmware->startChecked({offer.md5, offer.sha256},
                             m_source.key.isEmpty() ? QString() : offer.name);
}

void UpdateCheck::takeFirmware(const QString& path)
{
    --m_jobs;
    if (path.isEmpty())
        return;
    m_firmwareTidying = tidying(firmwareFolder(), QFileInfo(path).fileName());
    m_firmwareTidying->start();
    emit firmwareReady(path);
}

bool UpdateCheck::mayFetch(const PackageOffer& offer) const
{
    QString problem = offer.problem;
    if (problem.isEmpty() && !isOurs(offer.url))
        problem = QStringLiteral("not on the update server: ") + offer.url;
    if (problem.isEmpty() && !m_source.key.isEmpty())
        problem = UpdateSignature::problem(offer, QByteArray::fromBase64(m_source.key));
    if (problem.isEmpty())
        return true;
    tell(QStringLiteral("更新被拒绝 ") + offer.name + QLatin1Char(' ') + problem, __LINE__,
         "mayFetch");
    return false;
}

/// A descriptor names any address; whoever wrote it must not send the program elsewhere, nor to
/// what anyone on the way could replace.
bool UpdateCheck::isOurs(const QString& url) const
{
    const QUrl wanted = QUrl::fromEncoded(url.toUtf8(), QUrl::StrictMode);
    const QUrl server(m_source.server);
    const auto port = [](const QUrl& address) {
        return address.port(address.scheme() == QLatin1String("https") ? 443 : 80);
    };
    return wanted.isValid() && !wanted.host().isEmpty() && wanted.userInfo().isEmpty() &&
           wanted.scheme() == server.scheme() && wanted.host() == server.host() &&
           port(wanted) == port(server);
}
