// SPDX-License-Identifier: MIT
#include "ui/upgrade/batch_upgrade.h"

#include "common/package_digest.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui/hub/hub_state.h"
#include "ui/monitor/monitor_area.h"
#include "ui/upgrade/configuration_restore.h"
#include "ui/upgrade/package_dialog.h"
#include "ui/upgrade/upgrade_report.h"
#include "ui/window/window_frame.h"
#include "widgets/message_box.h"

#include <QFileInfo>
#include <QWidget>

#include <algorithm>

namespace
{

constexpr int allowanceTicks = 600;
constexpr int firstProgress = 30;

QString statusText(int total, int successful, int unknown)
{
    return BatchUpgrade::tr("升级中,升级期间请不要关闭电源或者操作KORA.共[%1]个,成功[%2]个,"
                            "未知[%3]个")
        .arg(total)
        .arg(successful)
        .arg(unknown);
}

} // namespace

BatchUpgrade::BatchUpgrade(const Hub& hub, TreeView* deviceView, Ui::MonitorArea& monitor,
                           WindowFrame& frame, ConfigurationRestore& restore, UpgradeReport& report)
    : QObject(nullptr)
    , m_hub(hub)
    , m_view(deviceView)
    , m_monitor(monitor)
    , m_frame(frame)
    , m_restore(restore)
    , m_report(report)
{
}

BatchUpgrade::~BatchUpgrade() = default;

/// A box is upgraded once at a time; one that has failed may be tried again.
QList<Item*> BatchUpgrade::selectedIdleBoxes() const
{
    QList<Item*> boxes;
    const QList<Item*> selected = m_view->selectedBoxes();
    for (Item* box : selected) {
        const bool busy = box->isUpgrading() && !box->hasTimedOut();
        if (box->isKora() && !busy)
            boxes << box;
    }
    return boxes;
}

void BatchUpgrade::choosePackage()
{
    if (m_asking)
        return;
    if (selectedIdleBoxes().isEmpty()) {
        messageBox::ask(tr("请您在设备列表中选择要升级固件的设备!"), m_hub.window);
        return;
    }
    m_asking = true;
    const QPointer<QWidget> window = m_hub.window;
    const QString file = chooseFirmwarePackage(m_hub.window);
    if (!window)
        return;
    m_asking = false;
    if (!file.isEmpty())
        startBatchUpgrade({file});
}

void BatchUpgrade::startWithFetchedPackage()
{
    startBatchUpgrade({m_hub.state.otaFilePath()});
}

void BatchUpgrade::startBatchUpgrade(const QStringList& files)
{
    // Files can be dropped on the window while a question is open.
    if (m_asking)
        return;
    const QPointer<BatchUpgrade> self = this;
    m_asking = true;
    // By pointers that notice when a box leaves the list while the question is open.
    QList<QPointer<Item>> boxes;
    const QList<Item*> selected = selectedIdleBoxes();
    for (Item* box : selected)
        boxes << box;
    QString refusal;
    if (boxes.isEmpty())
        refusal = tr("请您在设备列表中选择要升级固件的设备!");
    else if (files.size() != 1)
        refusal = tr("请您拖拽一个固件包文件到此处!");
    else if (!files.first().endsWith(QLatin1String(".dat")))
        refusal = tr("请您拖拽一个有效的固件升级包到此处");
    const int answer =
        refusal.isEmpty()
            ? messageBox::askWithRecovery(
                  tr("即将对您选择的%1个KORA进行升级固件操作,是否确认?").arg(boxes.size()),
                  m_hub.window)
            : messageBox::ask(refusal, m_hub.window);
    if (!self)
        return;
    m_asking = false;
    if (refusal.isEmpty() && answer >= messageBox::Confirmed)
        prepare(boxes, files.first(), answer == messageBox::ConfirmedKeepConfiguration);
}

/// From here on the boxes count as being upgraded: the window stays open, they stay in the list and
/// no second batch takes them, though nothing is sent before the package's digest is known.
void BatchUpgrade::prepare(const QList<QPointer<Item>>& boxes, const QString& file, bool keep)
{
    Pending pending;
    pending.keep = keep;
    for (const QPointer<Item>& box : boxes) {
        if (!box)
            continue;
        box->reserveForUpgrade();
        box->addTip(tr("正在计算固件校验值"));
        pending.boxes << box;
    }
    if (pending.boxes.isEmpty())
        return;
    showWaitingPage();
    m_view->refresh();
    pending.digest = std::make_unique<PackageDigest>(file);
    PackageDigest* digest = pending.digest.get();
    connect(
        digest, &PackageDigest::ready, this, [this, digest] { digestReady(digest); },
        Qt::QueuedConnection);
    m_pending.push_back(std::move(pending));
    digest->start();
}

void BatchUpgrade::digestReady(const PackageDigest* digest)
{
    const auto found = std::find_if(m_pending.begin(), m_pending.end(), [digest](const Pending& p) {
        return p.digest.get() == digest;
    });
    const Pending pending = std::move(*found);
    m_pending.erase(found);
    const QString file = digest->path();
    const QString md5 = digest->md5();
    if (md5.isEmpty()) {
        giveUp(pending);
        return;
    }
    m_report.begin(QFileInfo(file).fileName(), md5);
    for (const QPointer<Item>& box : pending.boxes) {
        if (!box)
            continue;
        m_report.addBox(box, pending.keep);
        m_restore.save(box->macAddress(), box->address(), pending.keep, [box, file, md5] {
            if (box && box->isUpgrading())
                box->startUpgrade(file, md5);
        });
    }
    startTick();
}

/// The package cannot be read: nothing has been sent to any box, and nothing will be.
void BatchUpgrade::giveUp(const Pending& pending)
{
    for (const QPointer<Item>& box : pending.boxes) {
        if (box)
            box->endUpgrade();
    }
    const Item* shown = shownBox();
    if (shown && !shown->isUpgrading())
        m_frame.showKora(*shown);
    m_view->refresh();
    messageBox::ask(tr("文件打开失败! "), m_hub.window);
}

void BatchUpgrade::startTick()
{
    QProgressBar* bar = m_monitor.upgrade_progress;
    if (m_view->isUpgradeTickRunning()) {
        bar->setMaximum(bar->maximum() + allowanceTicks);
    } else {
        m_view->startUpgradeTick();
        bar->setMaximum(allowanceTicks);
        bar->setValue(firstProgress);
    }
    const UpgradeCounts counts = m_hub.devices.upgradeCounts(QString());
    m_monitor.upgrade_status->setText(
        statusText(counts.upgrading, counts.successful, counts.timedOut));
}

void BatchUpgrade::step()
{
    const UpgradeCounts counts = m_hub.devices.upgradeCounts(QString());
    // A question about a second batch is open: its boxes must not leave the list meanwhile.
    if (counts.allEnded() && !m_asking) {
        finish(counts.successful, counts.timedOut);
        return;
    }
    m_monitor.upgrade_progress->setValue(m_monitor.upgrade_progress->value() + 1);
    const Item* shown = shownBox();
    m_monitor.tip->setText(shown ? shown->tips().join(QLatin1Char('\n')) : QString());
    m_monitor.upgrade_status->setText(
        statusText(counts.upgrading, counts.successful, counts.timedOut));
}

void BatchUpgrade::finish(int successful, int unknown)
{
    m_frame.showMonitorPage();
    m_view->stopUpgradeTick();
    m_report.batchEnded();
    const QList<Item*> items = m_hub.devices.model().items();
    for (Item* item : items) {
        if (item->isUpgrading())
            item->endUpgrade();
    }
    m_monitor.tip->clear();
    m_hub.devices.forgetIdleDevices();
    messageBox::ask(unknown < 1
                        ? tr("全部升级完成,KORA即将重启完成固件升级.成功[%1]个").arg(successful)
                        : tr("部分升级完成,KORA即将重启完成固件升级.成功[%1]个,未知[%2]个")
                              .arg(successful)
                              .arg(unknown),
                    m_hub.window);
}

void BatchUpgrade::handleMac(const QString& ip, const QString& mac)
{
    const QList<Item*> items = m_hub.devices.model().items();
    for (Item* item : items) {
        // Before the package has arrived a new address means something else than success.
        if (item->macAddress() == mac && item->address() != ip && item->isUpgrading() &&
            item->isUploaded())
            item->markActivated();
    }
}

Item* BatchUpgrade::shownBox() const
{
    return m_hub.devices.model().find(m_hub.state.deviceIp());
}

void BatchUpgrade::showWaitingPage()
{
    const Item* box = shownBox();
    if (box && box->isUpgrading())
        m_frame.showWaiting();
}
