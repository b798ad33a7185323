// SPDX-License-Identifier: MIT
#pragma once

#include "device/action.h"

#include <QHash>
#include <QIcon>
#include <QPersistentModelIndex>
#include <QStyledItemDelegate>
#include <QTimer>

class Item;

/// Paints one recording of the storage grid and turns the mouse on it into action codes.
class ListDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// The role that holds a row's Item, as QObject*.
    static constexpr int EntryRole = Qt::UserRole;

    explicit ListDelegate(QObject* parent);

    /// The recording behind a row; null for a row without one.
    static Item* entryAt(const QModelIndex& index);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

signals:
    /// A zone of the row at `index` was clicked: Download or Delete on the hover icons,
    /// PlayRecording for a double click, Select for a single one.
    void S_ActionClicked(Action type, const QModelIndex& index);

private:
    static QRect downloadZone(const QRect& row);
    static QRect deleteZone(const QRect& row);
    void paintIcon(QPainter& painter, const QRect& rect, const QString& path) const;
    static void paintName(QPainter& painter, const QRect& rect, const QString& name);
    static void paintFrame(QPainter& painter, const QRect& row, int penWidth);
    static void paintDropMarker(QPainter& painter, const QRect& row, int position);
    void countClick(const QModelIndex& index);
    void sendSingleClick();

    mutable QHash<QString, QIcon> m_icons; ///< parsing a drawing again for each row is slow
    QTimer m_clickTimer;
    QPersistentModelIndex m_clicked;
    int m_clicks = 0;
};
