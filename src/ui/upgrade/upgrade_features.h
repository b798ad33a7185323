// SPDX-License-Identifier: MIT
#pragma once

#include "ui/upgrade/batch_upgrade.h"
#include "ui/upgrade/configuration_restore.h"
#include "ui/upgrade/md5_tool.h"
#include "ui/upgrade/upgrade_report.h"

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

    /// The box at `ip` has told its MAC address.
    void noteMac(const QString& ip, const QString& mac);
    /// The update check has fetched a firmware package, which lies at `path`.
    void noteFetchedPackage(const QString& path);
    /// No box is being upgraded or waits for its settings.
    bool isIdle() const;
    /// False while boxes are being upgraded: the operator is told so. That message blocks and
    /// serves events.
    bool mayClose();

    UpgradeReport report;
    ConfigurationRestore restore;
    BatchUpgrade batch;
    Md5Tool md5;

private:
    void showReport();
    void showReportButton();

    const Hub m_hub;
    Ui::DeviceArea& m_devices;
    QPointer<UpgradeReportDialog> m_dialog;
};
