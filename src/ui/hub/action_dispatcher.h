// SPDX-License-Identifier: MIT
#pragma once

#include "device/action.h"

#include <functional>
#include <map>

class Item;

/// Routes what was clicked to its feature. Actions that nobody registered do nothing.
class ActionDispatcher
{
public:
    /// `item` is the clicked row, or null.
    using Handler = std::function<void(Item* item)>;

    void on(Action action, Handler handler) { m_handlers[action] = std::move(handler); }
    void dispatch(Action action, Item* item) const
    {
        const auto it = m_handlers.find(action);
        if (it != m_handlers.end())
            it->second(item);
    }

private:
    std::map<Action, Handler> m_handlers;
};
