// SPDX-License-Identifier: MIT
#include "media/event_message.h"

#include "common/json_map.h"

#include <QTime>

qint64 recordMsOf(const QString& message)
{
    // Not the whole of it as a map: messages come in floods.
    const QJsonValue told =
        jsonObject(message.toUtf8()).value_or(QJsonObject()).value(QStringLiteral("record_ms"));
    return qMax<qint64>(0, told.toVariant().toLongLong());
}

QString recordTimeText(qint64 ms)
{
    constexpr qint64 day = 24LL * 60 * 60 * 1000;
    return QTime(0, 0).addMSecs(int(ms % day)).toString(QStringLiteral("hh:mm:ss.zzz"));
}
