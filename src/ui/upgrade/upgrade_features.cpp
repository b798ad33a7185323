// SPDX-License-Identifier: MIT
#include "ui/upgrade/upgrade_features.h"

#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_view.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"
#include "ui/upgrade/drop_areas.h"
#include "ui/upgrade/upgrade_report_dialog.h"
#include "widgets/message_box.h"

#include <QAbstractButton>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QScrollArea>
#include <QScrollBar>

UpgradeFeatures::UpgradeFeatures(const Hub& hub, const UpgradeWidgets& widgets,
                                 const DropAreas& dropAreas, int tickMs)
    : QObject(nullptr)
    , m_hub(hub)
    , m_widgets(widgets)
    , m_settings(hub.state)
    , m_engine(hub.devices, hub.http, hub.runner, m_settings, tickMs)
    , m_start(widgets.deviceView, m_engine.batch, hub.window)
    , m_md5(hub.window)
{
    widgets.deviceView->setUpgradeTick(tickMs);
    connect(widgets.report, &QAbstractButton::clicked, this, &UpgradeFeatures::showReport);
    connect(&dropAreas, &DropAreas::filesDropped, &m_start, &BatchStart::startBatchUpgrade,
            Qt::QueuedConnection);
    // The newest line stays in sight.
    QScrollBar* bar = widgets.tipScroll->verticalScrollBar();
    connect(bar, &QScrollBar::rangeChanged, bar,
            [bar](int, int maximum) { bar->setValue(maximum); });
    registerWords();
    connectEngine();
}

void UpgradeFeatures::connectEngine()
{
    const BatchUpgrade* batch = &m_engine.batch;
    connect(batch, &BatchUpgrade::prepared, this, &UpgradeFeatures::showPrepared);
    connect(batch, &BatchUpgrade::packageUnreadable, this, &UpgradeFeatures::tellUnreadable);
    connect(batch, &BatchUpgrade::started, this, &UpgradeFeatures::showStarted);
    connect(batch, &BatchUpgrade::ticked, this, &UpgradeFeatures::showProgress);
    connect(batch, &BatchUpgrade::ended, this, &UpgradeFeatures::showEnd);
    const UpgradeReport* report = &m_engine.report;
    connect(report, &UpgradeReport::changed, this,
            [this, report] { m_widgets.report->setVisible(!report->isEmpty()); });
    connect(report, &UpgradeReport::settingsFound, this, &UpgradeFeatures::offerSettings,
            Qt::QueuedConnection);
    connect(report, &UpgradeReport::interruptedFound, this, &UpgradeFeatures::tellInterrupted);
    const ConfigurationRestore* restore = &m_engine.restore;
    connect(restore, &ConfigurationRestore::succeeded, this, [this](const QString& ip) {
        messageBox::notify(tr("%1 恢复设置成功,KORA设备正在重启.").arg(ip), m_hub.window);
    });
    connect(restore, &ConfigurationRestore::failed, this, [this](const QString& ip) {
        messageBox::notify(tr("%1 恢复设置失败,已尝试恢复,但任然失败,请检查KORA设备.").arg(ip),
                           m_hub.window);
    });
}

void UpgradeFeatures::registerWords()
{
    Exchange& exchange = m_hub.exchange;
    exchange.onResultPrefix(ConfigurationSnapshot::replyType(), [this](const HttpResult& result) {
        m_engine.snapshot.handleReply(result);
    });
    exchange.onResultPrefix(ConfigurationRestore::checkType(), [this](const HttpResult& result) {
        m_engine.restore.handleCheck(result);
    });
    exchange.onResultPrefix(UpgradeWatch::seenType(), [this](const HttpResult& result) {
        m_engine.watch.handleSeen(result);
    });
    exchange.onResultPrefix(UpgradeWatch::versionType(), [this](const HttpResult& result) {
        m_engine.watch.handleVersion(result);
    });
    exchange.onAction(Action::NewFirmware,
                      [this](Item*) { m_start.startBatchUpgrade({m_hub.state.otaFilePath()}); });
    exchange.onAction(Action::UpgradeTick, [this](Item*) { m_engine.batch.tick(); });
}

void UpgradeFeatures::noteFetchedPackage(const QString& path)
{
    const QString name = QFileInfo(path).completeBaseName();
    m_hub.state.setOtaFile(path, name);
    m_hub.devices.setFirmwareBaseName(name);
}

bool UpgradeFeatures::mayClose()
{
    if (m_engine.countdown.counts(koraFamily()).allEnded())
        return true;
    messageBox::ask(tr("正在对KORA升级固件,请勿关闭软件."), m_hub.window);
    return false;
}

bool UpgradeFeatures::isIdle() const
{
    return m_engine.countdown.counts(koraFamily()).allEnded() && !m_settings.isAnyWaiting();
}

void UpgradeFeatures::showPrepared()
{
    const Item* box = m_hub.findSelectedDevice();
    if (box && box->isUpgrading())
        emit waitingWanted();
    m_widgets.deviceView->refresh();
}

void UpgradeFeatures::showStarted(const UpgradeCounts& counts)
{
    if (!m_widgets.deviceView->isUpgradeTickRunning())
        m_widgets.deviceView->startUpgradeTick();
    m_widgets.progress->setMaximum(m_engine.countdown.maximum());
    m_widgets.progress->setValue(m_engine.countdown.progress());
    m_widgets.status->setText(BatchUpgrade::statusText(counts));
}

void UpgradeFeatures::showProgress(const UpgradeCounts& counts)
{
    const Item* shown = m_hub.findSelectedDevice();
    m_widgets.progress->setValue(m_engine.countdown.progress());
    m_widgets.tip->setText(shown ? shown->tips().join(QLatin1Char('\n')) : QString());
    m_widgets.status->setText(BatchUpgrade::statusText(counts));
}

void UpgradeFeatures::showEnd(const UpgradeCounts& counts)
{
    emit monitorWanted();
    m_widgets.deviceView->stopUpgradeTick();
    m_widgets.tip->clear();
    messageBox::ask(BatchUpgrade::endText(counts), m_hub.window);
}

void UpgradeFeatures::tellUnreadable()
{
    const Item* shown = m_hub.findSelectedDevice();
    if (shown && shown->isKora() && !shown->isUpgrading())
        emit koraWanted(*shown);
    m_widgets.deviceView->refresh();
    messageBox::ask(tr("文件打开失败! "), m_hub.window);
}

void UpgradeFeatures::tellInterrupted(int boxes)
{
    messageBox::notify(tr("上次固件升级被中断,当时有%1个KORA正在升级,请查看升级报告.").arg(boxes),
                       m_hub.window);
}

void UpgradeFeatures::offerSettings(const QMap<QString, QVariantMap>& saved, const QDateTime& when)
{
    const int answer = messageBox::ask(
        tr("上次固件升级中断时,有%1个KORA的设置尚未恢复(保存于%2),"
           "是否在发现这些KORA时恢复? 取消则放弃这些设置.")
            .arg(QString::number(saved.size()), when.toString(QStringLiteral("yyyy-MM-dd HH:mm"))),
        m_hub.window);
    if (!m_hub.window->isVisible())
        return;
    if (answer == messageBox::Confirmed)
        m_engine.restore.resume(saved);
    else
        m_engine.report.dropSettings(saved.keys());
}

void UpgradeFeatures::showReport()
{
    if (!m_dialog)
        m_dialog = new UpgradeReportDialog(m_engine.report, m_hub.window);
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}
