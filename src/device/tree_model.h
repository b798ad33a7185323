// SPDX-License-Identifier: MIT
#pragma once

#include "device/action.h"

#include <QAbstractItemModel>
#include <QList>
#include <QPersistentModelIndex>

#include <memory>

class Item;

/// The rows of the device list or of an information list: groups under an invisible root, boxes
/// under their groups. Owns all items. Knows no view: a view tells it which zone is under the
/// mouse.
class TreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    explicit TreeModel(QObject* parent = nullptr);
    ~TreeModel() override;

    /// The item behind a valid index of any TreeModel.
    static Item* itemAt(const QModelIndex& index);

    Item* root() const { return m_root.get(); }
    QModelIndex indexOf(const Item* item) const;

    /// The first item whose "deviceip", "MACAddress" or "title" equals `key`; null when there is
    /// none or `key` is empty.
    Item* find(const QString& key) const;
    /// The group titled `title`, null when there is none.
    Item* findGroup(const QString& title) const;
    /// All items in display order, or those under the group titled `parent`.
    QList<Item*> items(const QString& parent = QString()) const;

    /// Inserts `item` under `parent` at its sorted place and takes ownership.
    void append(Item* item, Item* parent, bool byTitle);
    /// Inserts `item` as row `row` of the top level and takes ownership.
    void insertTopRow(int row, Item* item);
    /// Takes `item` out and destroys it with everything below it.
    void remove(Item* item);
    void clear();

    /// Announces that the painting of any row may have changed.
    void announceLayout();
    /// The row and zone under the mouse, for the tooltip.
    void setHover(const QModelIndex& index, Action zone);
    /// The tooltip of one zone of an item, as plain text.
    static QString zoneTip(const Item& item, Action zone);
    /// How many boxes a group has and, unless all are, how many of them are online.
    static QString groupCount(const Item& group);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

private:
    void insert(Item* item, Item* parent, int row);

    std::unique_ptr<Item> m_root;
    QPersistentModelIndex m_hoverRow;
    Action m_hoverZone = Action::None;
};
