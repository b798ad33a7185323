// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>
#include <QTimer>

class Item;

namespace Ui
{
class DeviceArea;
}

/// The field that narrows the device list to the boxes an operator looks for (Ctrl+F). It never
/// hides a box that is highlighted, and no hidden one can become highlighted: nothing is done to a
/// box that the search has taken out of sight.
class DeviceFilter : public QObject
{
    Q_OBJECT

public:
    DeviceFilter(const Hub& hub, Ui::DeviceArea& area);

    /// Whether a box has all of these words in what is known of it: address, name, MAC address
    /// with or without its colons, version, family, and its state in the words of the language.
    static bool matches(const Item& box, const QString& words);

    /// Shows the field and gives it the keyboard.
    void open();
    /// Shows all boxes again, and puts the field away.
    void close();
    /// What is known of boxes has changed, or the words for it have.
    void lookAgain() { m_again.start(); }

signals:
    /// Rows may have come into sight, or left it.
    void applied();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void apply();
    bool applyToGroup(Item& group, const QString& words);

    Ui::DeviceArea& m_area;
    /// Many boxes come, and tell their names, within one turn of the event loop.
    QTimer m_again;
};
