// SPDX-License-Identifier: MIT
#include "ui/hub/command_sequence.h"

#include "common/command_runner.h"
#include "common/json_map.h"

#include <QWidget>

SequenceResult runCommands(const Hub& hub, const QString& ip, const QStringList& commands,
                           bool exact)
{
    bool allSucceeded = true;
    for (const QString& command : commands) {
        const QVariantMap reply = jsonToMap(hub.runner.execCurlWait(ip, command));
        if (!hub.window->isVisible())
            return SequenceResult::WindowClosed;
        const QString status = reply.value(QStringLiteral("status")).toString();
        allSucceeded &= exact ? status == QLatin1String("set success")
                              : status.contains(QLatin1String("success"));
    }
    return allSucceeded ? SequenceResult::AllSucceeded : SequenceResult::SomeFailed;
}
