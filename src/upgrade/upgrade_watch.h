// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSet>
#include <QTimer>

class Spark_Http;
struct HttpResult;

/// Asks boxes, again and again, whether they answer where they were last seen, and with which
/// version. Knows nothing of upgrades: who is to be asked is decided on due().
class UpgradeWatch : public QObject
{
    Q_OBJECT

public:
    /// `tickMs` is the length of the upgrade's second.
    UpgradeWatch(Spark_Http& http, int tickMs);

    /// Rounds begin, unless they go on already.
    void wake();
    /// No more rounds: nobody is left to be asked.
    void rest();
    /// Asks the box at `ip` for its MAC address, unless that question is still open.
    void ask(const QString& mac, const QString& ip);
    void askVersion(const QString& mac, const QString& ip);

    /// The types of the answers begin with these.
    static QString seenType() { return QStringLiteral("upgradeSeen"); }
    static QString versionType() { return QStringLiteral("upgradeVersion"); }
    void handleSeen(const HttpResult& result);
    void handleVersion(const HttpResult& result);

signals:
    /// A round begins.
    void due();
    /// At `ip` answers the box with this MAC address.
    void answered(const QString& ip, const QString& mac);
    /// Nobody answered, or another box.
    void missed(const QString& mac);
    /// Empty when the box did not tell it.
    void versionTold(const QString& ip, const QString& mac, const QString& version);

private:
    Spark_Http& m_http;
    QTimer m_rounds;
    QSet<QString> m_asked; ///< MAC addresses of boxes whose answer is still to come
};
