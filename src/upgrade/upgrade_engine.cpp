// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_engine.h"

#include "device/device_registry.h"

UpgradeEngine::UpgradeEngine(DeviceRegistry& devices, Spark_Http& http, CommandRunner& runner,
                             KeptSettings& kept, int tickMs)
    : QObject(nullptr)
    , watch(http, tickMs)
    , countdown(devices.model())
    , report(watch, tickMs)
    , snapshot(http, runner, kept)
    , restore(devices.model(), http, runner, kept,
              [this](const QString& mac, const QString& ip) {
                  return !snapshot.isTaking(mac) && report.mayWriteBack(mac, ip);
              })
    , batch(devices, countdown, snapshot, report)
{
    connect(&snapshot, &ConfigurationSnapshot::taken, &report, &UpgradeReport::setSaved);
    connect(&snapshot, &ConfigurationSnapshot::dhcpForced, &report, &UpgradeReport::setDhcpForced);
    connect(&restore, &ConfigurationRestore::restarting, &report, &UpgradeReport::setRestarting);
    connect(&restore, &ConfigurationRestore::ended, &report, &UpgradeReport::setRestored);
    connect(&watch, &UpgradeWatch::answered, this, &UpgradeEngine::macHeard);
    connect(&report, &UpgradeReport::seen, &restore, &ConfigurationRestore::boxSeen);
}

void UpgradeEngine::macHeard(const QString& ip, const QString& mac)
{
    batch.macHeard(ip, mac);
    report.macHeard(ip, mac);
}
