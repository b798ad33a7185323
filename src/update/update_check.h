// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

class Spark_Http;

/// A newer version of the program, downloaded.
struct Installer {
    QString version; ///< as the server names it
    QString path;    ///< in the data folder "upgrade"
    QString digest;  ///< MD5 of the file as downloaded, lower-case hex
};

/// Asks the update server once what the newest versions are, and downloads what is new. Says
/// nothing when there is no answer, a bad one or nothing new; the reason is in the debug stream.
class UpdateCheck : public QObject
{
    Q_OBJECT

public:
    /// `server` is scheme and host; `version` is that of this program. `http` outlives this object.
    UpdateCheck(Spark_Http& http, QString server, QString version);

    /// Requests both descriptors without waiting; the answers come by Spark_Http::S_finished under
    /// the types "toupgrade" (the program) and "toupgradekora" (box firmware).
    void start();

    /// The descriptors, as received. Both may serve events for as long as a download takes; this
    /// object may be gone afterwards.
    void handleProgram(const QString& body);
    void handleFirmware(const QString& body);

signals:
    void installerReady(const Installer& installer);
    /// The package lies at `path`, its digest checked.
    void firmwareReady(const QString& path);

private:
    bool mayDownload(const QString& url) const;

    Spark_Http& m_http;
    const QString m_server;
    const QString m_version;
};
