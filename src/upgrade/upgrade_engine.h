// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/batch_upgrade.h"
#include "upgrade/curl_link.h"
#include "upgrade/upgrade_fleet.h"
#include "upgrade/upgrade_journal.h"
#include "upgrade/upgrade_rows.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class DeviceRegistry;
class KeptSettings;
class Spark_Http;

/// The computer's time.
class SystemClock final : public UpgradeClock
{
public:
    explicit SystemClock(int tickMs) : m_tickMs(tickMs) { m_since.start(); }

    qint64 ms() const override { return m_since.elapsed(); }
    QDateTime date() const override { return QDateTime::currentDateTime(); }
    int tickMs() const override { return m_tickMs; }

private:
    const int m_tickMs;
    QElapsedTimer m_since;
};

/// Everything that upgrades boxes, without a widget. Members are made in this order: what one uses
/// stands before it.
class UpgradeEngine : public QObject
{
    Q_OBJECT

public:
    /// `tickMs` is the length of the upgrade's second.
    UpgradeEngine(DeviceRegistry& devices, Spark_Http& http, KeptSettings& kept, int tickMs);

    /// Looks for batches that an earlier run of the program left open.
    void loadInterrupted() { journal.load(); }

    /// The program may end now: batches are kept as they are. Waits at most `ms` for the disk.
    bool keep(int ms);

    SystemClock clock;
    CurlLink link;
    UpgradeJournal journal;
    UpgradeFleet fleet;
    UpgradeRows rows;
    BatchUpgrade batch;

private:
    QTimer m_timer;
};
