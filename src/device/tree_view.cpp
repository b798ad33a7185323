// SPDX-License-Identifier: MIT
#include "device/tree_view.h"

#include "device/item.h"
#include "device/row_words.h"
#include "device/tree_delegate.h"
#include "device/tree_model.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>

namespace
{

/// The rows, and what they say to those who do not see them.
class SpokenRows : public TreeModel
{
public:
    using TreeModel::TreeModel;

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (index.isValid() && role == Qt::AccessibleTextRole)
            return RowWords::name(*itemAt(index));
        if (index.isValid() && role == Qt::AccessibleDescriptionRole)
            return RowWords::description(*itemAt(index));
        return TreeModel::data(index, role);
    }
};

} // namespace

TreeView::TreeView(QWidget* parent)
    : QTreeView(parent), m_model(new SpokenRows(this)), m_delegate(new TreeDelegate(this))
{
    setModel(m_model);
    setItemDelegate(m_delegate);
    setUpView();

    m_upgradeTimer.setInterval(1000);
    m_autoExTimer.setInterval(300);
    m_autoExTimer.setSingleShot(true);
    m_scrollTimer.setInterval(200);
    // When all of a change has arrived, several rows taken out one by one included.
    m_settleTimer.setInterval(0);
    m_settleTimer.setSingleShot(true);
    connect(&m_settleTimer, &QTimer::timeout, this, [this] {
        if (state() != DragSelectingState)
            settle();
    });
    connect(&m_upgradeTimer, &QTimer::timeout, this, &TreeView::tickUpgrades);
    connect(&m_autoExTimer, &QTimer::timeout, this, &TreeView::R_autoExTimer);
    connect(&m_scrollTimer, &QTimer::timeout, this, &TreeView::R_scrollTimer);
    connect(this, &QWidget::customContextMenuRequested, this,
            &TreeView::R_customContextMenuRequested);
    connect(this, &QAbstractItemView::clicked, this, &TreeView::R_clicked);
    connect(m_delegate, &TreeDelegate::S_ActionClicked, this, &TreeView::R_ActionClicked);
    // A new group shows its boxes at once: nobody starts the program to see closed groups.
    connect(m_model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex& group, int first) {
                if (group.isValid() && first == 0 && m_model->rowCount(group) == 1)
                    expand(group);
                const Item* filed = TreeModel::itemAt(m_model->index(first, 0, group));
                if (filed->isDevice())
                    m_delegate->fit(*filed);
            });
}

void TreeView::setUpView()
{
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setHeaderHidden(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAnimated(true);
    setRootIsDecorated(false);
    setIndentation(0);
    setItemsExpandable(false);
    setExpandsOnDoubleClick(false);
    setDragEnabled(false);
    setAcceptDrops(false);
    setEditTriggers(NoEditTriggers);
    setUniformRowHeights(true);
    setMouseTracking(true);
}

QList<Item*> TreeView::selectedBoxes() const
{
    QList<Item*> boxes;
    const QList<Item*> all = m_model->items();
    for (Item* item : all) {
        if (!item->isGroup() && selectionModel()->isSelected(m_model->indexOf(item)))
            boxes << item;
    }
    return boxes;
}

void TreeView::refresh()
{
    m_model->announceLayout();
    viewport()->update();
}

void TreeView::startUpgradeTick()
{
    m_upgradeTimer.start();
}

void TreeView::stopUpgradeTick()
{
    m_upgradeTimer.stop();
}

void TreeView::tickUpgrades()
{
    viewport()->update();
    emit S_ActionClicked(Action::UpgradeTick, nullptr);
}

void TreeView::dragHovers(const QPoint& pos)
{
    if (indexAt(pos) != indexAt(m_dragPos) || !m_scrollTimer.isActive())
        m_autoExTimer.start();
    m_dragPos = pos;
    if (!m_scrollTimer.isActive())
        m_scrollTimer.start();
}

void TreeView::dragEnds()
{
    m_autoExTimer.stop();
    m_scrollTimer.stop();
}

void TreeView::R_autoExTimer()
{
    const QModelIndex index = indexAt(m_dragPos);
    if (index.isValid() && TreeModel::itemAt(index)->isGroup())
        expand(index);
}

void TreeView::R_scrollTimer()
{
    constexpr int edge = 24;
    QScrollBar* bar = verticalScrollBar();
    if (m_dragPos.y() < edge)
        bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
    else if (m_dragPos.y() > viewport()->height() - edge)
        bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
}

void TreeView::R_customContextMenuRequested(QPoint pos)
{
    const QModelIndex index = indexAt(pos);
    if (!index.isValid())
        return;
    const QPointer<Item> item = TreeModel::itemAt(index);
    QMenu menu;
    QAction* copy = menu.addAction(item->isDevice() ? tr("复制地址") : tr("复制"));
    emit menuWanted(&menu, item);
    QAction* restart = nullptr;
    QAction* upgrade = nullptr;
    if (item->isKora()) {
        menu.addSeparator();
        if (item->hasNewerFirmware())
            upgrade = menu.addAction(tr("升级到新固件"));
        restart = menu.addAction(tr("重启设备"));
    }
    const QAction* chosen = menu.exec(viewport()->mapToGlobal(pos));
    // The row may have left the list while the menu was open.
    if (!chosen || !item)
        return;
    if (chosen == copy)
        QGuiApplication::clipboard()->setText(item->displayText());
    else if (chosen == restart)
        R_ActionClicked(Action::RestartDevice, item);
    else if (chosen == upgrade)
        R_ActionClicked(Action::NewFirmware, item);
}

void TreeView::R_ActionClicked(Action type, Item* itemObj)
{
    if (m_isReleasing) {
        m_click = {type, itemObj};
        return;
    }
    const QModelIndex index = m_model->indexOf(itemObj);
    if (type == Action::GroupExpanded)
        collapse(index);
    else if (type == Action::GroupCollapsed)
        expand(index);
    emit S_ActionClicked(type, itemObj);
}

void TreeView::R_clicked(QModelIndex)
{
    // Icons at the right edge show on the selected row only.
    viewport()->update();
}

void TreeView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    if (selectionModel()->selection().isEmpty())
        settle();
    else
        m_settleTimer.start();
}

void TreeView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTreeView::currentChanged(current, previous);
    m_settleTimer.start();
}

QItemSelectionModel::SelectionFlags TreeView::selectionCommand(const QModelIndex& index,
                                                               const QEvent* event) const
{
    // Opening a group, or passing it by key, is about no box: those highlighted stay.
    if (index.isValid() && TreeModel::itemAt(index)->isGroup())
        return QItemSelectionModel::NoUpdate;
    // Neither does a click on a row's icon end the selection that the row is part of.
    if (event && event->type() == QEvent::MouseButtonRelease && index.isValid() &&
        isOwnAction(m_delegate->zones(index).at(static_cast<const QMouseEvent*>(event)->pos())))
        return QItemSelectionModel::NoUpdate;
    return QTreeView::selectionCommand(index, event);
}

Item* TreeView::boxToAddress() const
{
    const QModelIndex current = currentIndex();
    const QList<Item*> boxes = selectedBoxes();
    if (current.isValid() && boxes.contains(TreeModel::itemAt(current)))
        return TreeModel::itemAt(current);
    return boxes.contains(m_addressed) ? m_addressed.data() : boxes.value(0);
}

void TreeView::settle()
{
    m_settleTimer.stop();
    Item* const box = boxToAddress();
    if (box == m_addressed && (box != nullptr) == m_isAddressing)
        return;
    m_addressed = box;
    m_isAddressing = box != nullptr;
    m_isTold = true;
    m_delegate->setMarked(box);
    viewport()->update();
    emit S_ActionClicked(Action::Select, box);
}

void TreeView::mousePressEvent(QMouseEvent* event)
{
    m_isTold = false;
    QTreeView::mousePressEvent(event);
    // Of the left button the release decides, which may come after a drag; at the press of the
    // right one a menu opens.
    if (event->button() == Qt::RightButton)
        settle();
}

void TreeView::mouseReleaseEvent(QMouseEvent* event)
{
    m_click = {};
    m_isReleasing = true;
    QTreeView::mouseReleaseEvent(event);
    m_isReleasing = false;
    settle();
    act(m_click);
}

void TreeView::act(const Click& click)
{
    // A second click on the addressed box reads it again; one that only took a highlight away is
    // no wish to see that box.
    const bool wanted = click.type != Action::Select || (click.item && click.item->isGroup()) ||
                        (click.item == m_addressed && !m_isTold);
    if (click.item && wanted)
        R_ActionClicked(click.type, click.item);
}

void TreeView::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex before = currentIndex();
    if (before.isValid() && TreeModel::itemAt(before)->isGroup() &&
        (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)) {
        setExpanded(before, event->key() == Qt::Key_Right);
        return;
    }
    QTreeView::keyPressEvent(event);
    settle();
}

void TreeView::mouseMoveEvent(QMouseEvent* event)
{
    QTreeView::mouseMoveEvent(event);
    const QModelIndex index = indexAt(event->pos());
    const Action zone = index.isValid() ? m_delegate->zones(index).at(event->pos()) : Action::None;
    if (m_hoverRow == index && zone == m_hoverZone)
        return;
    m_hoverRow = index;
    m_hoverZone = zone;
    m_model->setHover(index, zone);
    showTip(index, event->globalPos());
}

void TreeView::leaveEvent(QEvent* event)
{
    m_hoverRow = QModelIndex();
    m_hoverZone = Action::None;
    m_model->setHover({}, Action::None);
    QTreeView::leaveEvent(event);
}

bool TreeView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        showTip(indexAt(help->pos()), help->globalPos());
        return true;
    }
    return QTreeView::viewportEvent(event);
}

void TreeView::showTip(const QModelIndex& index, const QPoint& globalPos)
{
    QStringList lines = {m_model->data(index, Qt::ToolTipRole).toString()};
    // An icon's tooltip is about the icon.
    if (index.isValid() && !isOwnAction(m_hoverZone))
        emit tipWanted(&lines, TreeModel::itemAt(index));
    const QString text = lines.join(QLatin1Char('\n'));
    if (text.isEmpty()) {
        QToolTip::hideText();
        return;
    }
    m_tipPos = globalPos;
    // A tooltip guesses whether its text is markup; text from a box must never be.
    QToolTip::showText(globalPos,
                       QStringLiteral("<span style=\"white-space:pre-wrap\">") +
                           text.toHtmlEscaped() + QStringLiteral("</span>"),
                       viewport());
}

void TreeView::refreshTip()
{
    if (m_hoverRow.isValid() && QToolTip::isVisible())
        showTip(m_hoverRow, m_tipPos);
}
