// SPDX-License-Identifier: MIT
#include "ui/upgrade/batch_start.h"

#include "device/item.h"
#include "device/tree_view.h"
#include "ui/upgrade/package_dialog.h"
#include "upgrade/batch_upgrade.h"
#include "upgrade/box_upgrade.h"
#include "widgets/message_box.h"

#include <QPointer>
#include <QWidget>

#include <algorithm>

namespace
{

/// Why there is nothing to upgrade though rows may be highlighted.
QString nothingIdle(const QList<Item*>& selected)
{
    if (std::any_of(selected.begin(), selected.end(), [](Item* box) { return box->isKora(); }))
        return BoxUpgrade::ownedText();
    return BatchStart::tr("请您在设备列表中选择要升级固件的设备!");
}

} // namespace

BatchStart::BatchStart(TreeView* deviceView, BatchUpgrade& batch, QWidget* window)
    : QObject(nullptr), m_view(deviceView), m_batch(batch), m_window(window)
{
}

/// The boxes that the question is about must not leave the list meanwhile.
void BatchStart::setAsking(bool asking)
{
    m_asking = asking;
    m_batch.setHeld(asking);
}

void BatchStart::choosePackage()
{
    if (m_asking)
        return;
    const QList<Item*> selected = m_view->selectedBoxes();
    if (BatchUpgrade::idleOf(selected).isEmpty()) {
        messageBox::tell(nothingIdle(selected), m_window);
        return;
    }
    setAsking(true);
    const QPointer<BatchStart> self = this;
    const QString file = chooseFirmwarePackage(m_window);
    if (!self)
        return;
    setAsking(false);
    if (!file.isEmpty())
        startBatchUpgrade({file});
}

void BatchStart::startBatchUpgrade(const QStringList& files)
{
    // Files can be dropped on the window while a question is open.
    if (m_asking)
        return;
    const QPointer<BatchStart> self = this;
    setAsking(true);
    // By pointers that notice when a box leaves the list while the question is open.
    QList<QPointer<Item>> boxes;
    const QList<Item*> selected = m_view->selectedBoxes();
    const QList<Item*> idle = BatchUpgrade::idleOf(selected);
    for (Item* box : idle)
        boxes << box;
    QString refusal;
    if (boxes.isEmpty())
        refusal = nothingIdle(selected);
    else if (files.size() != 1)
        refusal = tr("请您拖拽一个固件包文件到此处!");
    else if (!files.first().endsWith(QLatin1String(".dat")))
        refusal = tr("请您拖拽一个有效的固件升级包到此处");
    int answer = messageBox::Cancelled;
    if (refusal.isEmpty())
        answer = messageBox::askWithRecovery(
            tr("即将对您选择的%n个KORA进行升级固件操作,是否确认?", nullptr, boxes.size()),
            m_window);
    else
        messageBox::tell(refusal, m_window);
    if (!self)
        return;
    setAsking(false);
    if (refusal.isEmpty() && answer >= messageBox::Confirmed)
        m_batch.start(boxes, files.first(), answer == messageBox::ConfirmedKeepConfiguration);
}
