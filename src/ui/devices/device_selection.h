// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>

class Item;

/// Turns a click on a box into the news that it is the selected one, and its icons into commands.
/// A KORA box is announced through HubState, so that every feature shows it.
class DeviceSelection : public QObject
{
    Q_OBJECT

public:
    explicit DeviceSelection(const Hub& hub);

signals:
    void nothingSelected();
    /// The page of a web-managed box at `url` is to be shown, or shown again.
    void webBoxSelected(const QString& url);

private:
    /// Shows the box `item`; null when the selection became empty. A group changes nothing.
    void select(Item* item);
    /// Asks, then restarts the box. Blocks, serving events.
    void restart(Item* item);
    /// Blocks, serving events.
    void tellNotRestarted(const QString& ip);
    /// The selected box answers again: what is shown of it may be out of date.
    void handleCameOnline(const QString& ip);

    const Hub m_hub;
    bool m_pageShown = false; ///< what is selected is shown as a web page
};
