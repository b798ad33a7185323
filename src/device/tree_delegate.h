// SPDX-License-Identifier: MIT
#pragma once

#include "device/action.h"
#include "device/row_zones.h"

#include <QHash>
#include <QIcon>
#include <QStyledItemDelegate>

class Item;
class QTreeView;

/// Paints one row of the device tree or of an information list, and tells which zone was clicked.
class TreeDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// `view` is the view it paints for; it stays alive as long as the delegate.
    explicit TreeDelegate(QTreeView* view);

    /// The box whose row is marked among the highlighted ones; null: none.
    void setMarked(const Item* box) { m_marked = box; }
    /// The names of boxes stand in a column, behind the widest of these boxes' addresses.
    void fit(const Item& box);
    /// Where everything stands in the visible row of `index`.
    RowZones zones(const QModelIndex& index) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

signals:
    void S_ActionClicked(Action type, Item* itemObj);

protected:
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

private:
    void paintUpgrade(QPainter& painter, const QRect& row, const Item& item) const;
    void paintIcons(QPainter& painter, const RowZones& zones, const Item& item, bool active) const;
    void paintText(QPainter& painter, const RowZones& zones, const Item& item, bool active) const;
    void paintBeside(QPainter& painter, const RowZones& zones, const Item& item, int titleWidth,
                     bool active) const;
    static int paintActivity(QPainter& painter, const QRect& rect, const Item& item);
    void paintIcon(QPainter& painter, const QRect& rect, const QString& name) const;

    QTreeView* m_view;
    const Item* m_marked = nullptr; // compared, never followed
    int m_widestAddress = 0;
    mutable QHash<QString, QIcon> m_icons;
};
