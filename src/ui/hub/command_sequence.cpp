// SPDX-License-Identifier: MIT
#include "ui/hub/command_sequence.h"

#include "common/box_reply.h"
#include "common/command_runner.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"

#include <QWidget>

SequenceResult runCommands(const Hub& hub, const QString& ip, const QStringList& commands,
                           bool exact)
{
    bool allSucceeded = true;
    for (const QString& command : commands) {
        // An upgrade has taken the box meanwhile: nobody else may tell it anything.
        const Item* box = hub.devices.model().find(ip);
        if (box && box->isOwned())
            return SequenceResult::SomeFailed;
        const BoxReply reply(hub.runner.execCurlWait(ip, command));
        if (!hub.window->isVisible())
            return SequenceResult::WindowClosed;
        allSucceeded &= exact ? reply.isSetSuccess() : reply.containsSuccess();
    }
    return allSucceeded ? SequenceResult::AllSucceeded : SequenceResult::SomeFailed;
}
