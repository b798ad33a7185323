// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>

class DeviceRegistry;
class Exchange;
class HubState;
class Item;
class Orders;
class QWidget;
class Spark_Http;

/// What every feature of the window may use. The window owns all of it and outlives the features.
struct Hub {
    Q_DECLARE_TR_FUNCTIONS(Hub)

public:
    /// The selected box, which every operation is about; null when there is none or it has left the
    /// list.
    Item* findSelectedDevice() const;
    /// The same, but when there is none the operator is asked to select one. That message blocks
    /// and serves events.
    Item* selectedDevice() const;
    /// The same for what writes to the box or restarts it: null, after a message, too while an
    /// upgrade has the box.
    Item* freeDevice() const;
    /// False, after a message, while an upgrade has `device`. It blocks and serves events.
    bool isFree(const Item& device) const;

    HubState& state;
    DeviceRegistry& devices;
    Orders& orders; ///< the only way of a command to a box
    Spark_Http& http;
    Exchange& exchange;
    QWidget* window; ///< parent of dialogs
};
