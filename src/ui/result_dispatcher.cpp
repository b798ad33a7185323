// SPDX-License-Identifier: MIT
#include "ui/result_dispatcher.h"

#include "common/json_map.h"

void ResultDispatcher::on(const QString& type, Handler handler)
{
    m_handlers.insert(type, std::move(handler));
}

void ResultDispatcher::dispatch(const QVariantMap& map) const
{
    HttpResult result;
    result.type = map.value(QStringLiteral("type")).toString();
    const Handler handler = m_handlers.value(result.type);
    if (!handler)
        return;
    result.deviceIp = map.value(QStringLiteral("deviceip")).toString();
    result.body = map.value(QStringLiteral("body")).toString();
    const QVariantMap reply = jsonToMap(result.body);
    result.parameterName = reply.value(QStringLiteral("param_name")).toString();
    result.value = reply.value(QStringLiteral("value"));
    handler(result);
}
