// SPDX-License-Identifier: MIT
#pragma once

#include "device/probe_plan.h"
#include "device/spark_thread.h"

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>

class Item;
class Spark_Http;
class TreeModel;

/// Turns live addresses into boxes of the device tree and keeps each box's online flag. Owns the
/// sweep threads. GUI thread only; the tree belongs to its view.
class DeviceRegistry : public QObject
{
    Q_OBJECT

public:
    /// Connects a new thread's signals to their receiver, before it starts.
    using Wire = std::function<void(Spark_Thread* thread)>;

    DeviceRegistry(TreeModel& model, Spark_Http& http, SweepSettings settings, Wire wire);
    ~DeviceRegistry() override;

    TreeModel& model() const { return m_model; }
    const SweepSettings& settings() const { return m_settings; }

    /// Starts the endless search.
    void startSearch();
    /// Asks all known boxes whether they still answer, now and again every five seconds; and for
    /// their names, about once a minute.
    void checkStates();
    /// Ends every thread and its child processes.
    void stop();

    /// Addresses that answered a ping: those not yet in the tree are probed for a box.
    void probe(const QStringList& ips);
    /// Addresses that answered a check. Only boxes that `check` asked are judged, and none by an
    /// older check than one that judged it before; without `check` all were asked just now.
    void setReachable(const QStringList& ips, const Spark_Thread* check = nullptr);

    /// The routing words of the two probes.
    static QString nameProbe() { return QStringLiteral("findDevice"); }
    static QString pageProbe() { return QStringLiteral("findDevice_webui"); }
    /// What a probe of the web page, or of the box's own interface, brought back.
    void handleWebPage(const QString& ip, const QString& page);
    void handleDeviceName(const QString& ip, const QString& name);
    /// What the box at `ip` calls itself; empty: that is not known any more.
    void noteName(const QString& ip, const QString& name);
    /// Files a box under its group; does nothing for a known address or an empty name.
    void addDevice(const QString& ip, const QString& name);

    /// Takes out every box that is not being upgraded, and every group left empty, so that the
    /// search finds them afresh.
    void forgetIdleDevices();

    /// The base name of the firmware package at hand, which every KORA box is compared with, those
    /// found later as well.
    void setFirmwareBaseName(const QString& name);

signals:
    /// A box has been filed.
    void deviceAdded(Item* item);
    /// Something that rows show has changed.
    void changed();
    /// The box at `ip` answers again.
    void cameOnline(const QString& ip);

private:
    Spark_Thread* newThread();
    QList<Item*> devices() const;
    void askNames();

    TreeModel& m_model;
    Spark_Http& m_http;
    const SweepSettings m_settings;
    const Wire m_wire;
    QString m_firmwareBaseName;
    ProbePlan m_probes;
    QElapsedTimer m_clock;
    int m_checks = 0;             // begun so far
    QHash<QString, int> m_newest; // by address: this check and older ones say nothing new of it
    QHash<QString, qint64> m_nextNames; // by address: when it is asked for its name again
    QList<QPointer<Spark_Thread>> m_threads;
};
