// SPDX-License-Identifier: MIT
#include "ui/upgrade/upgrade_features.h"

#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
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

namespace
{

/// A label breaks lines between words only, and what a box answers may be one word of hundreds of
/// letters.
QString breakable(const QString& text)
{
    constexpr int longestWord = 24;
    QString broken;
    int word = 0;
    for (const QChar letter : text) {
        word = letter.isSpace() ? 0 : word + 1;
        if (word > longestWord) {
            broken += QChar(0x200b);
            word = 1;
        }
        broken += letter;
    }
    return broken;
}

} // namespace

UpgradeFeatures::UpgradeFeatures(const Hub& hub, const UpgradeWidgets& widgets,
                                 const DropAreas& dropAreas, int tickMs)
    : QObject(nullptr)
    , m_hub(hub)
    , m_widgets(widgets)
    , m_settings(hub.state)
    , m_engine(hub.devices, hub.http, m_settings, tickMs)
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
    connect(&m_engine.link, &CurlLink::uploadProgressed, this, &UpgradeFeatures::showUpload);
    const BatchUpgrade* batch = &m_engine.batch;
    connect(batch, &BatchUpgrade::prepared, this, &UpgradeFeatures::showPrepared);
    connect(batch, &BatchUpgrade::packageUnreadable, this, &UpgradeFeatures::tellUnreadable);
    connect(batch, &BatchUpgrade::started, this, &UpgradeFeatures::showStarted);
    connect(batch, &BatchUpgrade::ticked, this, &UpgradeFeatures::showProgress);
    connect(batch, &BatchUpgrade::ended, this, &UpgradeFeatures::showEnd);
    // What the panels show was read before the upgrade, or in its midst: to save that would undo
    // it.
    connect(&m_engine.rows, &UpgradeRows::boxReleased, this, [this](const QString& ip) {
        if (ip == m_hub.state.deviceIp())
            emit m_hub.state.readingWanted();
    });
    const UpgradeFleet* fleet = &m_engine.fleet;
    connect(fleet, &UpgradeFleet::reportChanged, this,
            [this, fleet] { m_widgets.report->setVisible(!fleet->sessions().isEmpty()); });
    connect(fleet, &UpgradeFleet::boxIdentified, this, &UpgradeFeatures::boxIdentified);
    connect(fleet, &UpgradeFleet::settingsFound, this, &UpgradeFeatures::offerSettings,
            Qt::QueuedConnection);
    connect(fleet, &UpgradeFleet::interruptedFound, this, &UpgradeFeatures::tellInterrupted);
    connect(fleet, &UpgradeFleet::restored, this, [this](const QString& ip, bool verified) {
        const QString text = verified ? tr("%1 恢复设置成功,KORA设备正在重启.")
                                      : tr("%1 设置已写回但未能核对，KORA设备正在重启。");
        messageBox::notify(text.arg(ip), m_hub.window);
    });
    connect(fleet, &UpgradeFleet::restoreFailed, this, [this](const QString& ip) {
        messageBox::notify(tr("%1 恢复设置失败,已尝试恢复,但任然失败,请检查KORA设备.").arg(ip),
                           m_hub.window);
    });
}

void UpgradeFeatures::registerWords()
{
    Exchange& exchange = m_hub.exchange;
    exchange.onResult(CurlLink::readType(),
                      [this](const HttpResult& result) { m_engine.link.handleRead(result); });
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
    if (!isBatchOver()) {
        messageBox::tell(tr("正在对KORA升级固件,请勿关闭软件."), m_hub.window);
        return false;
    }
    const int waiting = m_engine.fleet.waitingCount();
    return waiting == 0 ||
           messageBox::ask(tr("还有%n个KORA的设置等待恢复。如果现在关闭，下次启动时会询问是否恢复。"
                              "是否关闭？",
                              nullptr, waiting),
                           m_hub.window) == messageBox::Confirmed;
}

void UpgradeFeatures::tellNotToEnd()
{
    messageBox::notify(tr("正在对KORA升级固件,请勿关闭软件."), m_hub.window);
}

bool UpgradeFeatures::isIdle() const
{
    return isBatchOver() && m_engine.fleet.isIdle() && !m_settings.isAnyWaiting();
}

bool UpgradeFeatures::isBatchOver() const
{
    UpgradeCounts rows;
    const QList<Item*> boxes = m_hub.devices.model().items(koraFamily());
    for (const Item* box : boxes) {
        rows.upgrading += box->isUpgrading() ? 1 : 0;
        rows.timedOut += box->hasTimedOut() ? 1 : 0;
        rows.successful += box->hasSucceeded() ? 1 : 0;
    }
    return rows.allEnded() && m_engine.batch.counts().allEnded();
}

void UpgradeFeatures::showUpload(const QString& ip, int percent)
{
    Item* box = m_hub.devices.model().find(ip);
    if (!box || !box->isDevice())
        return;
    box->setActivity(percent < 0 ? QString() : tr("上传 %1%").arg(percent));
    m_widgets.deviceView->viewport()->update();
}

void UpgradeFeatures::showPrepared()
{
    // Nobody knows how long the package's digest takes.
    if (!m_widgets.deviceView->isUpgradeTickRunning())
        m_widgets.progress->setRange(0, 0);
    m_widgets.status->setText(tr("正在计算固件校验值"));
    const Item* box = m_hub.findSelectedDevice();
    if (box && box->isUpgrading())
        emit waitingWanted();
    m_widgets.deviceView->refresh();
}

void UpgradeFeatures::showStarted(const UpgradeCounts& counts)
{
    if (!m_widgets.deviceView->isUpgradeTickRunning())
        m_widgets.deviceView->startUpgradeTick();
    m_widgets.progress->setRange(0, m_engine.batch.maximum());
    m_widgets.progress->setValue(m_engine.batch.progress());
    m_widgets.status->setText(BatchUpgrade::statusText(counts));
}

void UpgradeFeatures::showProgress(const UpgradeCounts& counts)
{
    const Item* shown = m_hub.findSelectedDevice();
    m_widgets.progress->setValue(m_engine.batch.progress());
    m_widgets.tip->setText(shown ? breakable(shown->tips().join(QLatin1Char('\n'))) : QString());
    m_widgets.status->setText(BatchUpgrade::statusText(counts));
}

void UpgradeFeatures::showEnd(const UpgradeCounts& counts)
{
    emit monitorWanted();
    m_widgets.deviceView->stopUpgradeTick();
    m_widgets.tip->clear();
    messageBox::tell(BatchUpgrade::endText(counts), m_hub.window);
}

void UpgradeFeatures::tellUnreadable()
{
    const Item* shown = m_hub.findSelectedDevice();
    if (shown && shown->isKora() && !shown->isUpgrading())
        emit koraWanted(*shown);
    m_widgets.deviceView->refresh();
    messageBox::tell(tr("文件打开失败! "), m_hub.window);
}

void UpgradeFeatures::tellInterrupted(int boxes)
{
    messageBox::notify(
        tr("上次固件升级被中断，当时有%n个KORA正在升级，请查看升级报告。", nullptr, boxes),
        m_hub.window);
}

void UpgradeFeatures::offerSettings(const QMap<QString, QVariantMap>& saved, const QDateTime& when)
{
    const int answer =
        messageBox::ask(tr("上次固件升级中断时，有%n个KORA的设置尚未恢复（保存于%1），"
                           "是否在发现这些KORA时恢复？取消则放弃这些设置。",
                           nullptr, saved.size())
                            .arg(when.toString(QStringLiteral("yyyy-MM-dd HH:mm"))),
                        m_hub.window);
    if (!m_hub.window->isVisible())
        return;
    if (answer == messageBox::Confirmed)
        m_engine.fleet.release(saved.keys());
    else
        m_engine.fleet.dropSettings(saved.keys());
}

void UpgradeFeatures::showReport()
{
    if (!m_dialog)
        m_dialog = new UpgradeReportDialog(m_engine.fleet, m_hub.window);
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}
