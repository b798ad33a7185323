// SPDX-License-Identifier: MIT
#include "ui/devices/device_filter.h"

#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui_device_area.h"
#include "widgets/placeholder.h"

#include <QKeyEvent>
#include <QShortcut>

#include <algorithm>

DeviceFilter::DeviceFilter(const Hub& hub, Ui::DeviceArea& area) : QObject(hub.window), m_area(area)
{
    m_again.setSingleShot(true);
    m_again.setInterval(0);
    connect(&m_again, &QTimer::timeout, this, &DeviceFilter::apply);
    const auto again = QOverload<>::of(&QTimer::start);
    connect(&hub.devices, &DeviceRegistry::changed, &m_again, again);
    connect(area.deviceView->treeModel(), &QAbstractItemModel::rowsInserted, &m_again, again);
    connect(area.deviceView->treeModel(), &QAbstractItemModel::layoutChanged, &m_again, again);
    connect(area.deviceView->selectionModel(), &QItemSelectionModel::selectionChanged, &m_again,
            again);
    connect(area.deviceFilter, &QLineEdit::textChanged, this, &DeviceFilter::apply);
    connect(area.filterDevices, &QToolButton::toggled, this,
            [this](bool isOn) { isOn ? open() : close(); });
    auto* find =
        new QShortcut(QKeySequence(area.filterDevices->property("keys").toString()), hub.window);
    connect(find, &QShortcut::activated, this, &DeviceFilter::open);
    keepPlaceholderDim(*area.deviceFilter);
    area.deviceFilter->installEventFilter(this);
    area.deviceView->installEventFilter(this);
}

bool DeviceFilter::matches(const Item& box, const QString& words)
{
    QString mac = box.macAddress();
    mac.remove(QLatin1Char(':'));
    QStringList known{box.address(),         box.name(),
                      box.macAddress(),      mac,
                      box.firmwareVersion(), box.isOnline() ? tr("在线") : tr("离线")};
    if (box.parentItem())
        known << box.parentItem()->title();
    if (box.hasNewerFirmware())
        known << tr("可升级");
    if (box.isUpgrading())
        known << tr("升级中");
    const QString text = known.join(QLatin1Char('\n'));
    const QStringList wanted = words.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return std::all_of(wanted.begin(), wanted.end(), [&text](const QString& word) {
        return text.contains(word, Qt::CaseInsensitive);
    });
}

void DeviceFilter::open()
{
    m_area.device_filter_bar->show();
    m_area.filterDevices->setChecked(true);
    m_area.deviceFilter->setFocus(Qt::ShortcutFocusReason);
    m_area.deviceFilter->selectAll();
}

void DeviceFilter::close()
{
    const bool hadKeys = m_area.deviceFilter->hasFocus();
    m_area.deviceFilter->clear();
    m_area.device_filter_bar->hide();
    m_area.filterDevices->setChecked(false);
    if (hadKeys)
        m_area.deviceView->setFocus(Qt::OtherFocusReason);
}

void DeviceFilter::apply()
{
    TreeView& view = *m_area.deviceView;
    const TreeModel& model = *view.treeModel();
    const QString words = m_area.deviceFilter->text().simplified();
    for (int row = 0; row < model.root()->childCount(); ++row) {
        Item& group = *model.root()->child(row);
        const bool isShown = applyToGroup(group, words);
        if (view.isRowHidden(row, {}) == isShown)
            view.setRowHidden(row, {}, !isShown);
        if (isShown && !words.isEmpty())
            view.expand(model.indexOf(&group));
    }
    // From a hidden row the keys would lead to it.
    const QModelIndex current = view.currentIndex();
    if (current.isValid() && view.isRowHidden(current.row(), current.parent()))
        view.selectionModel()->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
    emit applied();
}

/// Whether any box of the group is in sight.
bool DeviceFilter::applyToGroup(Item& group, const QString& words)
{
    TreeView& view = *m_area.deviceView;
    const TreeModel& model = *view.treeModel();
    const QModelIndex parent = model.indexOf(&group);
    int kept = 0;
    for (int row = 0; row < group.childCount(); ++row) {
        const Item& box = *group.child(row);
        const bool isKept =
            matches(box, words) || view.selectionModel()->isSelected(model.indexOf(&box));
        if (view.isRowHidden(row, parent) == isKept)
            view.setRowHidden(row, parent, !isKept);
        kept += isKept ? 1 : 0;
    }
    const std::optional<int> count = words.isEmpty() ? std::nullopt : std::optional<int>(kept);
    if (group.shownCount() != count) {
        group.setShownCount(count);
        view.viewport()->update();
    }
    return kept > 0;
}

/// The keys that lead out of the search: to what was found, or back to all.
bool DeviceFilter::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    const bool isField = watched == m_area.deviceFilter;
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Escape:
        if (m_area.device_filter_bar->isHidden())
            return false;
        close();
        return true;
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (isField)
            m_area.deviceView->setFocus(Qt::OtherFocusReason);
        return isField;
    default:
        return false;
    }
}
