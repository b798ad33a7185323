// SPDX-License-Identifier: MIT
#pragma once

#include "common/command_runner.h"
#include "ui/hub/hub.h"

#include <QObject>
#include <QQueue>
#include <QSet>
#include <QTimer>

#include <functional>
#include <map>

struct HttpResult;
class ParameterPanel;
class UpgradeReport;

/// Keeps the settings of boxes over a firmware upgrade: reads them before, writes them back when
/// the upgraded box is seen again, and once more when that failed.
///
/// Several boxes are written to at once, each one parameter after the other; nothing blocks.
class ConfigurationRestore : public QObject
{
    Q_OBJECT

public:
    ConfigurationRestore(const Hub& hub, ParameterPanel& panel, UpgradeReport& report);
    ~ConfigurationRestore() override;

    /// Reads the settings of the box at `ip` into the window's property named `mac`. With `keep`
    /// they are to be written back, missing replies are asked for again, and `then` is called once
    /// they are whole or were given up; otherwise `then` is called at once.
    void save(const QString& mac, const QString& ip, bool keep, std::function<void()> then);

    /// One parameter of a snapshot has arrived, or failed to; the type is "saveConfig" + MAC.
    void handleSaved(const HttpResult& result);
    /// The box at `ip` has told its MAC address: if its settings wait for it, they are written.
    void handleMac(const QString& ip, const QString& mac);
    /// One written parameter has been read again; the type begins with checkType().
    void handleCheck(const HttpResult& result);
    static QString saveType() { return QStringLiteral("saveConfig"); }
    static QString checkType() { return QStringLiteral("checkConfig"); }

    /// Asks whether settings saved at `when`, by an earlier run, are to be written back.
    void offer(const QMap<QString, QVariantMap>& saved, const QDateTime& when);

private:
    /// A snapshot that is being read.
    struct Snapshot {
        QString ip;
        int outstanding = 0; ///< replies still to come in this round
        int roundsLeft = 0;
        QSet<QString> answered;
        std::function<void()> then;
    };
    /// A box that gets its settings back.
    struct WriteBack {
        QString ip;
        QVariantMap values;
        QStringList rest; ///< parameters still to be written, then still to be checked
        QStringList failed;
        QStringList different; ///< taken by the box, but not as sent
        bool unread = false;
    };

    void addRound(const QString& mac);
    void startNextRound();
    void readRound(const QString& mac);
    void endSnapshot(const QString& mac);
    void startQueued();
    void begin(const QString& mac, const QString& ip);
    void writeNext(const QString& mac);
    void commandEnded(QProcess* process);
    void checkAll(const QString& mac);
    void finish(const QString& mac);
    void finishWithFailures(const QString& mac, const WriteBack& done);
    void removeFromList(const QString& mac);

    const Hub m_hub;
    ParameterPanel& m_panel;
    UpgradeReport& m_report;
    CommandRunner m_runner;
    std::map<QString, Snapshot> m_snapshots;
    std::map<QString, WriteBack> m_running;
    QQueue<QString> m_rounds; ///< MAC addresses of boxes whose settings are to be read next
    QTimer m_roundTimer;
    int m_roundsYielded = 0; ///< turns in a row that were left to the start of commands
    QQueue<QPair<QString, QString>> m_queue; ///< MAC address and address of boxes to come
};
