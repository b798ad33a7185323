// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QString>
#include <QStringList>

#include <functional>

/// How a run of blocking commands ended.
enum class SequenceResult {
    AllSucceeded,
    SomeFailed,
    WindowClosed, ///< the operator closed the window; nothing more was sent, nobody to tell
};

/// Sends `commands` to the box at `ip` one after the other; a failure does not stop the list, an
/// upgrade that takes the box meanwhile does, and counts as one; so does another box, if
/// `isSameBox` is given to ask before the first command and after each that failed. A command
/// succeeds when the "status" of its reply contains "success", or equals "set success" when
/// `exact`. Blocks, serving events: callers hold nothing that may go away.
SequenceResult runCommands(const Hub& hub, const QString& ip, const QStringList& commands,
                           bool exact = false, const std::function<bool()>& isSameBox = {});
