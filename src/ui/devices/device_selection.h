// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>

class DeviceInfo;
class EventSockets;
class Item;
class ParameterPanel;
class WindowFrame;

/// Turns a click on a box into the reads and views that show it, and its icons into commands.
class DeviceSelection : public QObject
{
    Q_OBJECT

public:
    DeviceSelection(const Hub& hub, WindowFrame& frame, DeviceInfo& info, ParameterPanel& panel,
                    EventSockets& events);

    /// Shows the box `item`; null when the selection became empty. A group changes nothing.
    void select(Item* item);
    /// Asks, then restarts the box.
    void restart(Item* item);
    /// The selected box answers again: what is shown of it may be out of date.
    void handleCameOnline(const QString& ip);

signals:
    /// The KORA box is now the one that every operation addresses.
    void koraSelected(const Item& box);

private:
    void showKora(const Item& box);
    void readSelected();

    const Hub m_hub;
    WindowFrame& m_frame;
    DeviceInfo& m_info;
    ParameterPanel& m_panel;
    EventSockets& m_events;
};
