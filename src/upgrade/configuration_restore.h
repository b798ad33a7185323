// SPDX-License-Identifier: MIT
#pragma once

#include "common/command_runner.h"
#include "upgrade/upgrade_record.h"

#include <QObject>
#include <QQueue>

#include <functional>
#include <map>

class KeptSettings;
class Spark_Http;
class TreeModel;
struct HttpResult;

/// Writes the kept settings of boxes back when the upgraded boxes are seen again, and once more
/// when that failed.
///
/// Several boxes are written to at once, each one parameter after the other; nothing blocks.
class ConfigurationRestore : public QObject
{
    Q_OBJECT

public:
    /// Whether the box with this MAC address may be written to, at `ip`, now.
    using Permit = std::function<bool(const QString& mac, const QString& ip)>;

    /// `runner` takes the orders to restart, whose answers nobody waits for.
    ConfigurationRestore(TreeModel& devices, Spark_Http& http, CommandRunner& runner,
                         KeptSettings& kept, Permit permit);
    ~ConfigurationRestore() override;

    /// The box answers at `ip`: if its settings wait for it, they are written.
    void boxSeen(const QString& ip, const QString& mac);
    /// One written parameter has been read again; the type begins with checkType().
    void handleCheck(const HttpResult& result);
    static QString checkType() { return QStringLiteral("checkConfig"); }

    /// Settings saved by an earlier run wait for their boxes from now on.
    void resume(const QMap<QString, QVariantMap>& saved);

signals:
    /// The box restarts with what it took of its settings, and gets its last try afterwards.
    void restarting(const QString& mac);
    /// Nothing more is written to the box; `parameters` are those that did not take.
    void ended(const QString& mac, UpgradeRow::Settings outcome, const QStringList& parameters);
    void succeeded(const QString& ip);
    void failed(const QString& ip);

private:
    /// A box that gets its settings back.
    struct WriteBack {
        QString ip;
        QVariantMap values;
        QStringList rest; ///< parameters still to be written, then still to be checked
        QStringList failed;
        QStringList different; ///< taken by the box, but not as sent
        bool unread = false;
    };

    void startQueued();
    void begin(const QString& mac, const QString& ip);
    void writeNext(const QString& mac);
    void commandEnded(QProcess* process);
    void checkAll(const QString& mac);
    void finish(const QString& mac);
    void finishWithFailures(const QString& mac, const WriteBack& done);

    TreeModel& m_devices;
    Spark_Http& m_http;
    CommandRunner& m_restarts;
    KeptSettings& m_kept;
    const Permit m_permit;
    CommandRunner m_runner;
    std::map<QString, WriteBack> m_running;  ///< by MAC address
    QQueue<QPair<QString, QString>> m_queue; ///< MAC address and address of boxes to come
};
