// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QQueue>
#include <QSet>
#include <QTimer>
#include <QVariantMap>

#include <functional>
#include <map>

class CommandRunner;
class KeptSettings;
class Spark_Http;
struct HttpResult;

/// Reads the settings of boxes before their upgrade.
class ConfigurationSnapshot : public QObject
{
    Q_OBJECT

public:
    ConfigurationSnapshot(Spark_Http& http, CommandRunner& runner, KeptSettings& kept);
    ~ConfigurationSnapshot() override;

    /// Reads the settings of the box at `ip`. With `keep` they are to be written back, missing
    /// replies are asked for again, and `then` is called once they are whole or were given up;
    /// otherwise `then` is called at once.
    void take(const QString& mac, const QString& ip, bool keep, std::function<void()> then);
    bool isTaking(const QString& mac) const { return m_boxes.count(mac) > 0; }

    /// One parameter has arrived, or failed to; the type is replyType() + MAC.
    void handleReply(const HttpResult& result);
    static QString replyType() { return QStringLiteral("saveConfig"); }

signals:
    /// The settings to be kept of a box have been read, or could not be read `whole`.
    void taken(const QString& mac, const QVariantMap& values, bool whole);
    /// A box with a fixed address was switched to an assigned one.
    void dhcpForced(const QString& mac);

private:
    /// A box whose settings are being read.
    struct Box {
        QString ip;
        int outstanding = 0; ///< replies still to come in this round
        int roundsLeft = 0;
        QSet<QString> answered;
        std::function<void()> then;
    };

    void addRound(const QString& mac);
    void startNextRound();
    void readRound(const QString& mac);
    void keepValue(const HttpResult& result, const QString& mac);
    void end(const QString& mac);

    Spark_Http& m_http;
    CommandRunner& m_runner;
    KeptSettings& m_kept;
    std::map<QString, Box> m_boxes; ///< by MAC address
    QQueue<QString> m_rounds;       ///< MAC addresses of boxes to be read next
    QTimer m_roundTimer;
    int m_roundsYielded = 0; ///< turns in a row that were left to the start of commands
};
