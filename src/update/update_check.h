// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <memory>

class PackageDigest;
class SparkDownload;
class Spark_Http;

/// A newer version of the program, downloaded.
struct Installer {
    QString version; ///< as the server names it
    QString path;    ///< in the data folder "upgrade"
    QString digest;  ///< MD5 of the file as it was when offered, lower-case hex
};

/// Asks the update server once what the newest versions are, and downloads what is new. Says
/// nothing when there is no answer, a bad one or nothing new; the reason is in the debug stream.
///
/// Nothing here waits: packages come and are read on threads of their own, which end with this
/// object.
class UpdateCheck : public QObject
{
    Q_OBJECT

public:
    /// `server` is scheme and host; `version` is that of this program. `http` outlives this object.
    UpdateCheck(Spark_Http& http, QString server, QString version);
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
    bool mayDownload(const QString& url) const;
    void takeInstaller(const QString& path);

    Spark_Http& m_http;
    const QString m_server;
    const QString m_version;
    int m_jobs = 0;
    QString m_latest; ///< the newer version; empty: none known
    std::unique_ptr<SparkDownload> m_installer;
    std::unique_ptr<PackageDigest> m_installerDigest;
    std::unique_ptr<SparkDownload> m_firmware;
};
