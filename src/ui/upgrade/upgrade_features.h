// SPDX-License-Identifier: MIT
#pragma once

#include "ui/upgrade/batch_upgrade.h"
#include "ui/upgrade/configuration_restore.h"
#include "ui/upgrade/md5_tool.h"
#include "ui/upgrade/upgrade_report.h"

class ActionDispatcher;
class DeviceInfo;
class DropAreas;
class ResultDispatcher;
class UpgradeReportDialog;
namespace Ui
{
class DeviceArea;
} // namespace Ui

/// Everything that belongs to firmware upgrades, and who of it hears what.
class UpgradeFeatures : public QObject
{
    Q_OBJECT

public:
    UpgradeFeatures(const Hub& hub, Ui::DeviceArea& devices, Ui::MonitorArea& monitor,
                    WindowFrame& frame, ParameterPanel& panel, int tickMs);

    void connectTo(ResultDispatcher& results, ActionDispatcher& actions, DropAreas& dropAreas,
                   DeviceInfo& info);

    UpgradeReport report;
    ConfigurationRestore restore;
    BatchUpgrade batch;
    Md5Tool md5;

private:
    void noteMac(const QString& ip, const QString& mac);
    void showReport();
    void showReportButton();

    const Hub m_hub;
    Ui::DeviceArea& m_devices;
    QPointer<UpgradeReportDialog> m_dialog;
};
