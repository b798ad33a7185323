// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/batch_upgrade.h"
#include "upgrade/configuration_restore.h"
#include "upgrade/configuration_snapshot.h"
#include "upgrade/upgrade_countdown.h"
#include "upgrade/upgrade_report.h"
#include "upgrade/upgrade_watch.h"

#include <QObject>

/// Everything that upgrades boxes, without a widget, and who of it hears what. Members are made in
/// this order: what one uses stands before it.
class UpgradeEngine : public QObject
{
    Q_OBJECT

public:
    /// `tickMs` is the length of the upgrade's second.
    UpgradeEngine(DeviceRegistry& devices, Spark_Http& http, CommandRunner& runner,
                  KeptSettings& kept, int tickMs);

    /// The box at `ip` has told its MAC address: the one way in for it, whoever asked.
    void macHeard(const QString& ip, const QString& mac);

    UpgradeWatch watch;
    UpgradeCountdown countdown;
    UpgradeReport report;
    ConfigurationSnapshot snapshot;
    ConfigurationRestore restore;
    BatchUpgrade batch;
};
