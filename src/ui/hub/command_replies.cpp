// SPDX-License-Identifier: MIT
#include "ui/hub/command_replies.h"

#include "common/json_map.h"

void CommandReplies::dispatch(const QProcess& process, const QString& text) const
{
    const QVariantMap reply = jsonToMap(text);
    const Handler handler = m_handlers.value(reply.value(QStringLiteral("action")).toString());
    if (handler)
        handler(process, reply);
}
