// SPDX-License-Identifier: MIT
#pragma once

#include "device/action.h"

#include <QPointer>
#include <QTimer>
#include <QTreeView>

class Item;
class QMenu;
class TreeDelegate;
class TreeModel;

/// A list of boxes under their groups, or of information rows. Owns its model and its delegate.
/// Reports what the operator does; it changes no box. One of the highlighted boxes is always the
/// addressed one, which a mark shows: every change of it is reported, however it came about.
class TreeView : public QTreeView
{
    Q_OBJECT

public:
    explicit TreeView(QWidget* parent = nullptr);

    TreeModel* treeModel() const { return m_model; }
    /// The selected boxes, groups left out, in display order.
    QList<Item*> selectedBoxes() const;

    /// Shows again what may have changed in any item.
    void refresh();
    /// The clock of the upgrades in progress: once a second it is reported as an action.
    void startUpgradeTick();
    void stopUpgradeTick();
    /// The length of a tick in milliseconds, 1000 unless set.
    void setUpgradeTick(int ms) { m_upgradeTimer.setInterval(ms); }
    bool isUpgradeTickRunning() const { return m_upgradeTimer.isActive(); }

    /// The tooltip under the mouse, if one shows, has more to say, or less.
    void refreshTip();

    /// While a file is dragged over the list: `pos` in the viewport. A collapsed group under it
    /// opens after a moment, and the list scrolls near its edges.
    void dragHovers(const QPoint& pos);
    void dragEnds();

signals:
    /// What a click or key asked for. `Action::Select` with a box: that one is addressed now, or
    /// was clicked again; with null: none is, as none is highlighted. Null for the upgrade tick
    /// too.
    void S_ActionClicked(Action type, Item* itemObj);
    /// The menu of `item` is about to show: who has more to offer adds it now. Null never.
    void menuWanted(QMenu* menu, Item* item);
    /// The tooltip of `item`, never null, is about to show: who has more to say adds lines now.
    void tipWanted(QStringList* lines, const Item* item);

public slots:
    void R_autoExTimer();
    void R_scrollTimer();
    void R_customContextMenuRequested(QPoint pos);
    void R_ActionClicked(Action type, Item* itemObj);
    void R_clicked(QModelIndex index);

protected slots:
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    /// What the delegate says was clicked, kept until the click has had its effect.
    struct Click {
        Action type = Action::None;
        QPointer<Item> item;
    };

    void setUpView();
    Item* boxToAddress() const;
    /// Makes the box addressed that is to be; tells it when it is another.
    void settle();
    void act(const Click& click);
    void tickUpgrades();
    void showTip(const QModelIndex& index, const QPoint& globalPos);

    TreeModel* m_model;
    TreeDelegate* m_delegate;
    QTimer m_upgradeTimer;
    QTimer m_settleTimer;
    QTimer m_autoExTimer;
    QTimer m_scrollTimer;
    QPoint m_dragPos;
    Action m_hoverZone = Action::None;
    QPersistentModelIndex m_hoverRow;
    QPoint m_tipPos;
    QPointer<Item> m_addressed;
    bool m_isAddressing = false; ///< the last box told has not been taken back
    bool m_isTold = false;       ///< since the mouse was pressed
    bool m_isReleasing = false;
    Click m_click;
};
