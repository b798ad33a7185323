// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>
#include <QTimer>

namespace Ui
{
class DeviceArea;
}

/// The device area: keeps the list's picture in step with the boxes, and opens and closes groups.
class DeviceList : public QObject
{
    Q_OBJECT

public:
    DeviceList(const Hub& hub, Ui::DeviceArea& area);

    /// Opens or closes every group.
    void setExpanded(bool expanded);
    /// Something in the rows has changed, but no row came or went.
    void repaint();

private:
    Ui::DeviceArea& m_area;
    /// Many boxes answer within one turn of the event loop; the list is laid out once for all.
    QTimer m_refresh;
};
