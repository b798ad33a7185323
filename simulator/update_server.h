// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/http_server.h"

#include <QJsonObject>
#include <QMap>

#include <mutex>

namespace sim
{

/// The vendor's update server: the two descriptors and the packages they name. Until something else
/// is set, every path is missing. All functions may be called from any thread, those that offer and
/// sign from one.
class UpdateServer
{
public:
    explicit UpdateServer(QString address, quint16 port = 8070);

    /// False when the port cannot be opened.
    bool start() { return m_server.start(); }
    void stop() { m_server.stop(); }

    /// "http://127.77.0.2:8070/" and `path`.
    QString url(const QString& path = {}) const;

    /// What `path` ("/fw.dat") is answered with.
    void set(const QString& path, const HttpReply& reply);
    /// What every other path is answered with.
    void setOthers(const HttpReply& reply);
    /// A file that is offered under `offeredName`; empty: without a name of its own.
    static HttpReply file(const QByteArray& content, const QString& offeredName = {});

    /// What a signature is about, in place of what it should be.
    enum class Lie { None, Kind, Version, Name, Digest };
    /// Descriptors offered from now on are signed with the secret key in this file (PEM), by the
    /// openssl command; an empty name: not any more.
    void signWith(const QString& keyFile, Lie lie = Lie::None);

    /// The descriptors, as the program reads them. What is signed is the file as it is set by then.
    void offerProgram(const QString& version, const QString& downloadUrl);
    void offerFirmware(const QString& md5, const QString& downloadUrl);
    static QString programPath()
    {
        return QStringLiteral("/wp-content/uploads/config/update_Tarn_Hub.json");
    }
    static QString firmwarePath()
    {
        return QStringLiteral("/wp-content/uploads/config/update_KORA.json");
    }

    /// The program as it is, and box firmware newer than that of the virtual boxes.
    void furnish(const QString& programVersion);

    QStringList requests() const; ///< "GET /fw.dat", oldest first, at most 1000

private:
    HttpReply answer(const HttpRequest& request);
    QJsonObject signedFields(const QString& kind, const QString& version,
                             const QString& downloadUrl) const;

    const QString m_address;
    const quint16 m_port;
    QString m_keyFile; // of whoever offers
    Lie m_lie = Lie::None;
    mutable std::mutex m_mutex; // guards the three below
    QMap<QString, HttpReply> m_replies;
    HttpReply m_others;
    QStringList m_requests;
    HttpServer m_server;
};

} // namespace sim
