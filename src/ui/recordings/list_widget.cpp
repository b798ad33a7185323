// SPDX-License-Identifier: MIT
#include "ui/recordings/list_widget.h"

#include "device/item.h"
#include "ui/recordings/file_type.h"
#include "ui/recordings/list_delegate.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QTextDocument>
#include <QUrl>

#include <algorithm>

namespace
{

/// A row that says what its icon shows.
class SpokenRow : public QListWidgetItem
{
public:
    using QListWidgetItem::QListWidgetItem;

    QVariant data(int role) const override
    {
        const auto* entry =
            qobject_cast<Item*>(QListWidgetItem::data(ListDelegate::EntryRole).value<QObject*>());
        if (!entry || (role != Qt::AccessibleTextRole && role != Qt::AccessibleDescriptionRole))
            return QListWidgetItem::data(role);
        if (role == Qt::AccessibleTextRole)
            return entry->isPlaying() ? ListWidget::tr("%1，正在播放").arg(text()) : text();
        return fileType(entry->filePath()) == FileType::Video ? ListWidget::tr("视频") : QString();
    }
};

} // namespace

ListWidget::ListWidget(QWidget* parent) : QListWidget(parent)
{
    setProperty("isSearch", false);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setDragEnabled(false);
    setSelectionMode(ExtendedSelection);
    setViewMode(IconMode);
    setMovement(Static);
    setResizeMode(Adjust);
    setUniformItemSizes(true);
    setLayoutMode(Batched);
    setIconSize({32, 32});
    setSpacing(4);
    setVerticalScrollMode(ScrollPerPixel);
    setMouseTracking(true);

    auto* delegate = new ListDelegate(this);
    setItemDelegate(delegate);
    connect(delegate, &ListDelegate::S_ActionClicked, this,
            [this](Action type, const QModelIndex& index) {
                R_ActionClicked(type, itemFromIndex(index));
            });
    connect(this, &QWidget::customContextMenuRequested, this, &ListWidget::showMenu);
}

ListWidget::~ListWidget() = default;

Item* ListWidget::entryOf(const QListWidgetItem* row) const
{
    return row ? ListDelegate::entryAt(indexFromItem(row)) : nullptr;
}

QList<QListWidgetItem*> ListWidget::selectedRows() const
{
    QList<QListWidgetItem*> rows;
    for (int n = 0; n < count(); ++n) {
        if (item(n)->isSelected())
            rows << item(n);
    }
    return rows;
}

void ListWidget::addEntry(std::unique_ptr<Item> entry)
{
    const QString title = entry->title();
    auto* row = new SpokenRow(title);
    row->setToolTip(Qt::mightBeRichText(title) ? title.toHtmlEscaped() : title);
    row->setData(ListDelegate::EntryRole, QVariant::fromValue<QObject*>(entry.get()));
    m_entries.push_back(std::move(entry));
    addItem(row);
}

std::unique_ptr<Item> ListWidget::takeEntry(const Item* entry)
{
    const auto place = std::find_if(m_entries.begin(), m_entries.end(),
                                    [entry](const auto& own) { return own.get() == entry; });
    if (place == m_entries.end())
        return nullptr;
    delete takeItem(static_cast<int>(place - m_entries.begin()));
    std::unique_ptr<Item> taken = std::move(*place);
    m_entries.erase(place);
    return taken;
}

void ListWidget::clearEntries()
{
    const QSignalBlocker blocker(this);
    clear();
    m_entries.clear();
}

void ListWidget::R_ActionClicked(Action type, QListWidgetItem* item)
{
    if (type == Action::Download)
        emit S_download(selectedRows());
    else if (type == Action::Delete)
        emit S_delete(selectedRows());
    else if (type == Action::PlayRecording && entryOf(item))
        emit S_ActionClicked(type, entryOf(item));
}

void ListWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        R_ActionClicked(Action::PlayRecording, currentItem());
    else if (event->key() == Qt::Key_Delete)
        R_ActionClicked(Action::Delete, currentItem());
    else
        QListWidget::keyPressEvent(event);
}

void ListWidget::showMenu(const QPoint& pos)
{
    // The keys may have come to a row without highlighting it.
    if (selectedRows().isEmpty() && currentItem() && itemAt(pos) == currentItem())
        currentItem()->setSelected(true);
    if (selectedRows().isEmpty())
        return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // The list may be read again while the menu is open: the rows are those of the moment.
    menu->addAction(tr("下载"), this, [this] { emit S_download(selectedRows()); });
    menu->addAction(tr("删除"), this, [this] { emit S_delete(selectedRows()); });
    menu->popup(viewport()->mapToGlobal(pos));
}

QMimeData* ListWidget::mimeData(const QList<QListWidgetItem*> items) const
{
    QList<QUrl> urls;
    for (const QListWidgetItem* row : items)
        urls << QUrl(row->text(), QUrl::TolerantMode);
    auto* data = new QMimeData;
    data->setUrls(urls);
    return data;
}
