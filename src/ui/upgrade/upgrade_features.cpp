// SPDX-License-Identifier: MIT
#include "ui/upgrade/upgrade_features.h"

#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_view.h"
#include "ui/devices/device_area.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"
#include "ui/monitor/monitor_area.h"
#include "ui/upgrade/upgrade_report_dialog.h"
#include "widgets/message_box.h"

#include <QFileInfo>
#include <QScrollBar>

UpgradeFeatures::UpgradeFeatures(const Hub& hub, Ui::DeviceArea& devices, Ui::MonitorArea& monitor,
                                 WindowFrame& frame, ParameterPanel& panel, int tickMs)
    : QObject(nullptr)
    , report(hub, tickMs)
    , restore(hub, panel, report)
    , batch(hub, devices.deviceView, monitor, frame, restore, report)
    , md5(hub.window)
    , m_hub(hub)
    , m_devices(devices)
{
    devices.deviceView->setUpgradeTick(tickMs);
    connect(devices.upgradeReport, &QAbstractButton::clicked, this, &UpgradeFeatures::showReport);
    connect(&report, &UpgradeReport::changed, this, &UpgradeFeatures::showReportButton);
    connect(&report, &UpgradeReport::seen, &restore, &ConfigurationRestore::handleMac);
    connect(&report, &UpgradeReport::settingsFound, &restore, &ConfigurationRestore::offer,
            Qt::QueuedConnection);
    connect(&report, &UpgradeReport::interruptedFound, this, [this](int boxes) {
        messageBox::notify(
            tr("上次固件升级被中断,当时有%1个KORA正在升级,请查看升级报告.").arg(boxes),
            m_hub.window);
    });
    hub.exchange.onResultPrefix(ConfigurationRestore::saveType(),
                                [this](const HttpResult& result) { restore.handleSaved(result); });
    hub.exchange.onResultPrefix(ConfigurationRestore::checkType(),
                                [this](const HttpResult& result) { restore.handleCheck(result); });
    hub.exchange.onResultPrefix(UpgradeReport::seenType(),
                                [this](const HttpResult& result) { report.handleSeen(result); });
    hub.exchange.onResultPrefix(UpgradeReport::versionType(),
                                [this](const HttpResult& result) { report.handleVersion(result); });
    hub.exchange.onAction(Action::NewFirmware, [this](Item*) { batch.startWithFetchedPackage(); });
    hub.exchange.onAction(Action::UpgradeTick, [this](Item*) { batch.step(); });
    // The newest line stays in sight.
    QScrollBar* bar = monitor.tip_scroll->verticalScrollBar();
    connect(bar, &QScrollBar::rangeChanged, bar,
            [bar](int, int maximum) { bar->setValue(maximum); });
}

void UpgradeFeatures::noteMac(const QString& ip, const QString& mac)
{
    batch.handleMac(ip, mac);
    report.noteMac(ip, mac);
    restore.handleMac(ip, mac);
}

void UpgradeFeatures::noteFetchedPackage(const QString& path)
{
    const QString name = QFileInfo(path).completeBaseName();
    m_hub.state.setOtaFile(path, name);
    m_hub.devices.setFirmwareBaseName(name);
}

bool UpgradeFeatures::isIdle() const
{
    return m_hub.devices.upgradeCounts(koraFamily()).allEnded() &&
           m_hub.state.needRestore().isEmpty();
}

bool UpgradeFeatures::mayClose()
{
    if (m_hub.devices.upgradeCounts(koraFamily()).allEnded())
        return true;
    messageBox::ask(tr("正在对KORA升级固件,请勿关闭软件."), m_hub.window);
    return false;
}

void UpgradeFeatures::showReport()
{
    if (!m_dialog)
        m_dialog = new UpgradeReportDialog(report, m_hub.window);
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}

void UpgradeFeatures::showReportButton()
{
    m_devices.upgradeReport->setVisible(!report.isEmpty());
}
