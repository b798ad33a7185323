// SPDX-License-Identifier: MIT
#include "ui/hub/command_sequence.h"

#include "common/box_reply.h"
#include "common/command_runner.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"

#include <QWidget>

SequenceResult runCommands(const Hub& hub, const QString& ip, const QStringList& commands,
                           bool exact, const std::function<bool()>& isSameBox)
{
    bool allSucceeded = true;
    bool isSure = !isSameBox;
    for (const QString& command : commands) {
        // An address passes on only while nobody answers at it.
        if (!isSure && !isSameBox())
            return hub.window->isVisible() ? SequenceResult::SomeFailed
                                           : SequenceResult::WindowClosed;
        // An upgrade has taken the box meanwhile: nobody else may tell it anything.
        const Item* box = hub.devices.model().find(ip);
        if (box && box->isOwned())
            return SequenceResult::SomeFailed;
        const BoxReply reply(hub.runner.execCurlWait(ip, command));
        if (!hub.window->isVisible())
            return SequenceResult::WindowClosed;
        const bool succeeded = exact ? reply.isSetSuccess() : reply.containsSuccess();
        allSucceeded &= succeeded;
        isSure = succeeded || !isSameBox;
    }
    return allSucceeded ? SequenceResult::AllSucceeded : SequenceResult::SomeFailed;
}
