// SPDX-License-Identifier: MIT
#pragma once

#include "common/loose_queue.h"
#include "ui/hub/hub.h"

#include <QObject>

class Item;
class QMenu;
class TreeModel;
class TreeView;

/// What the menu of the device list offers beside what every list has: the box's name for the
/// clipboard, its web page in a browser, and the list of all boxes as a file.
class DeviceMenu : public QObject
{
    Q_OBJECT

public:
    DeviceMenu(const Hub& hub, TreeView& view);

    /// All boxes as a table for spreadsheets, with a line of headings.
    static QByteArray inventory(const TreeModel& model);

private:
    void extend(QMenu& menu, const Item& item);
    /// Asks where to; the rest of the window waits for the answer.
    void exportInventory();
    /// Without waiting for the disk; what came of it is said.
    void save(const QString& path);

    const Hub m_hub;
    LooseQueue m_disk;
    bool m_isChoosing = false;
};
