// SPDX-License-Identifier: MIT
#include "ui/hub/result_dispatcher.h"

#include "common/json_map.h"

void ResultDispatcher::on(const QString& type, Handler handler)
{
    m_handlers.insert(type, std::move(handler));
}

void ResultDispatcher::onPrefix(const QString& prefix, Handler handler)
{
    m_prefixes.insert(prefix, std::move(handler));
}

ResultDispatcher::Handler ResultDispatcher::handlerFor(const QString& type) const
{
    const auto whole = m_handlers.constFind(type);
    if (whole != m_handlers.constEnd())
        return *whole;
    for (auto it = m_prefixes.cbegin(); it != m_prefixes.cend(); ++it) {
        if (type.startsWith(it.key()))
            return it.value();
    }
    return nullptr;
}

void ResultDispatcher::dispatch(const QVariantMap& map) const
{
    HttpResult result;
    result.type = map.value(QStringLiteral("type")).toString();
    const Handler handler = handlerFor(result.type);
    if (!handler)
        return;
    result.deviceIp = map.value(QStringLiteral("deviceip")).toString();
    result.body = map.value(QStringLiteral("body")).toString();
    const QVariantMap reply = jsonToMap(result.body);
    result.parameterName = reply.value(QStringLiteral("param_name")).toString();
    result.value = reply.value(QStringLiteral("value"));
    handler(result);
}
