// SPDX-License-Identifier: MIT
#include "device/tree_model.h"

#include "device/item.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

namespace
{

void collect(Item* item, QList<Item*>& into)
{
    for (int row = 0; row < item->childCount(); ++row) {
        into << item->child(row);
        collect(item->child(row), into);
    }
}

} // namespace

TreeModel::TreeModel(QObject* parent) : QAbstractItemModel(parent), m_root(std::make_unique<Item>())
{
    m_root->setGroup(true);
}

TreeModel::~TreeModel() = default;

Item* TreeModel::itemAt(const QModelIndex& index)
{
    return static_cast<Item*>(index.internalPointer());
}

QModelIndex TreeModel::indexOf(const Item* item) const
{
    if (!item || item == m_root.get())
        return {};
    return createIndex(item->row(), 0, const_cast<Item*>(item));
}

Item* TreeModel::find(const QString& key) const
{
    if (key.isEmpty())
        return nullptr;
    const QList<Item*> all = items();
    for (Item* item : all) {
        if (item->address() == key || item->macAddress() == key || item->title() == key)
            return item;
    }
    return nullptr;
}

QList<Item*> TreeModel::items(const QString& parent) const
{
    QList<Item*> found;
    if (parent.isEmpty()) {
        collect(m_root.get(), found);
        return found;
    }
    if (Item* group = findGroup(parent))
        collect(group, found);
    return found;
}

Item* TreeModel::findGroup(const QString& title) const
{
    for (int row = 0; row < m_root->childCount(); ++row) {
        if (m_root->child(row)->title() == title)
            return m_root->child(row);
    }
    return nullptr;
}

void TreeModel::append(Item* item, Item* parent, bool byTitle)
{
    insert(item, parent, parent->sortedRow(item, byTitle));
}

void TreeModel::insertTopRow(int row, Item* item)
{
    insert(item, m_root.get(), row);
}

void TreeModel::insert(Item* item, Item* parent, int row)
{
    beginInsertRows(indexOf(parent), row, row);
    parent->insertChild(row, item);
    endInsertRows();
}

void TreeModel::remove(Item* item)
{
    Item* parent = item->parentItem();
    const int row = item->row();
    beginRemoveRows(indexOf(parent), row, row);
    const std::unique_ptr<Item> taken(parent->takeChild(row));
    endRemoveRows();
}

void TreeModel::clear()
{
    beginResetModel();
    while (m_root->childCount() > 0)
        delete m_root->takeChild(m_root->childCount() - 1);
    endResetModel();
}

void TreeModel::announceLayout()
{
    emit layoutAboutToBeChanged();
    emit layoutChanged();
}

void TreeModel::setHover(const QModelIndex& index, Action zone)
{
    m_hoverRow = index;
    m_hoverZone = zone;
}

QString TreeModel::zoneTip(const Item& item, Action zone)
{
    switch (zone) {
    case Action::RestartDevice:
        return tr("重启设备");
    case Action::RestartSoftware:
        return tr("重启软件");
    case Action::NewFirmware:
        return tr("发现新固件可升级");
    case Action::Title:
        return item.title();
    case Action::Content:
        return item.content();
    case Action::Online:
        return tr("在线");
    case Action::Offline:
        return tr("离线");
    default:
        return item.displayText();
    }
}

QString TreeModel::groupCount(const Item& group)
{
    int online = 0;
    for (int row = 0; row < group.childCount(); ++row)
        online += group.child(row)->isOnline() ? 1 : 0;
    if (group.shownCount())
        return tr("显示 %1/%2").arg(*group.shownCount()).arg(group.childCount());
    return online == group.childCount() ? QString::number(online)
                                        : tr("%1/%2 在线").arg(online).arg(group.childCount());
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    const Item* item = parent.isValid() ? itemAt(parent) : m_root.get();
    return createIndex(row, column, item->child(row));
}

QModelIndex TreeModel::parent(const QModelIndex& child) const
{
    return child.isValid() ? indexOf(itemAt(child)->parentItem()) : QModelIndex();
}

int TreeModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    return parent.isValid() ? itemAt(parent)->childCount() : m_root->childCount();
}

int TreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant TreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole)
        return itemAt(index)->displayText();
    if (role == Qt::ToolTipRole)
        return zoneTip(*itemAt(index), m_hoverRow == index ? m_hoverZone : Action::None);
    return {};
}

Qt::ItemFlags TreeModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return itemAt(index)->isGroup() ? Qt::ItemIsEnabled : Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

QStringList TreeModel::mimeTypes() const
{
    return {QStringLiteral("Item/ItemSize"), QStringLiteral("Item/ItemPtr")};
}

QMimeData* TreeModel::mimeData(const QModelIndexList& indexes) const
{
    QByteArray addresses;
    QDataStream stream(&addresses, QIODevice::WriteOnly);
    for (const QModelIndex& index : indexes)
        stream << quint64(reinterpret_cast<quintptr>(itemAt(index)));
    auto* mime = new QMimeData;
    mime->setData(QStringLiteral("Item/ItemSize"), QByteArray::number(indexes.size()));
    mime->setData(QStringLiteral("Item/ItemPtr"), addresses);
    return mime;
}
