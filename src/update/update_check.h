// SPDX-License-Identifier: MIT
#pragma once

#include "update/descriptor.h"

#include <QObject>
#include <QString>

#include <memory>

class LooseThread;
class SparkDownload;
class Spark_Http;

/// A newer version of the program, downloaded.
struct Installer {
    QString version; ///< as the server names it
    QString name;    ///< what the server calls the file
    QString host;    ///< of the server
    QString path;    ///< in the data folder "upgrade"
    QString digest;  ///< SHA-256 of the file as it was when offered, lower-case hex
};

/// Where updates come from, and who vouches for them.
struct UpdateSource {
    QString server; ///< scheme, host and port; nothing comes from anywhere else
    QByteArray key; ///< an Ed25519 public key, base64; empty: nobody has to sign
};

/// Asks the update server once what the newest versions are, and downloads what is new. Says
/// nothing when there is no answer, a bad one or nothing new; the reason is in the log "update".
///
/// Nothing here waits: packages come and are read on threads of their own, which end with this
/// object.
class UpdateCheck : public QObject
{
    Q_OBJECT

public:
    /// `version` is that of this program. `http` outlives this object.
    UpdateCheck(Spark_Http& http, UpdateSource source, QString version);
    ~UpdateCheck() override;

    /// The routing words of the two descriptors.
    static QString programWord() { return QStringLiteral("toupgrade"); }
    static QString firmwareWord() { return QStringLiteral("toupgradekora"); }
    /// Requests both descriptors; the answers come by Spark_Http::S_finished under these words.
    void start();

    /// The descriptors, as received. The first of each that leads to a package counts.
    void handleProgram(const QString& body);
    void handleFirmware(const QString& body);

    /// Something is still being downloaded or read.
    bool isBusy() const { return m_jobs > 0; }

signals:
    void installerReady(const Installer& installer);
    /// The package lies at `path`, its digest checked.
    void firmwareReady(const QString& path);

private:
    bool mayFetch(const PackageOffer& offer) const;
    bool isOurs(const QString& url) const;
    void fetchInstaller();
    void takeInstaller(const QString& path);
    void takeFirmware(const QString& path);

    Spark_Http& m_http;
    const UpdateSource m_source;
    const QString m_version;
    int m_jobs = 0;
    bool m_hasProgram = false;
    PackageOffer m_latest; ///< the newer version; without a version: none known
    std::unique_ptr<LooseThread> m_programTidying;
    std::unique_ptr<LooseThread> m_firmwareTidying;
    std::unique_ptr<SparkDownload> m_installer;
    std::unique_ptr<SparkDownload> m_firmware;
};
