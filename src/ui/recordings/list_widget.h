// SPDX-License-Identifier: MIT
#pragma once

#include "device/action.h"

#include <QListWidget>

#include <memory>
#include <vector>

class Item;

/// The storage list: one cell per recording of the selected box. Owns the recordings' records.
///
/// Keys: the arrows move, Return plays, Delete deletes, Ctrl+A selects all, the menu key opens the
/// menu.
class ListWidget : public QListWidget
{
    Q_OBJECT

public:
    explicit ListWidget(QWidget* parent = nullptr);
    ~ListWidget() override;

    /// The recordings in the order of the list.
    const std::vector<std::unique_ptr<Item>>& entries() const { return m_entries; }
    /// The recording of a row, null when it has none.
    Item* entryOf(const QListWidgetItem* row) const;
    /// The rows that are selected, in the order of the list.
    QList<QListWidgetItem*> selectedRows() const;

    /// Appends a row for `entry`, labelled with its "title".
    void addEntry(std::unique_ptr<Item> entry);
    /// Removes and deletes the row of `entry`; the caller owns the recording.
    std::unique_ptr<Item> takeEntry(const Item* entry);
    void clearEntries();

public slots:
    /// Turns an action code of a row into this list's signals; others are dropped.
    void R_ActionClicked(Action type, QListWidgetItem* item);

signals:
    void S_download(QList<QListWidgetItem*> items);
    void S_delete(QList<QListWidgetItem*> items);
    /// The recording of a row asks to be played or stopped.
    void S_ActionClicked(Action type, Item* item);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    QMimeData* mimeData(const QList<QListWidgetItem*> items) const override;

private:
    void showMenu(const QPoint& pos);

    std::vector<std::unique_ptr<Item>> m_entries;
};
