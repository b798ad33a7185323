// SPDX-License-Identifier: MIT
#include "common/http_result.h"

#include "common/json_map.h"

HttpResult HttpResult::fromMap(const QVariantMap& map)
{
    HttpResult result;
    result.type = map.value(QStringLiteral("type")).toString();
    result.deviceIp = map.value(QStringLiteral("deviceip")).toString();
    result.body = map.value(QStringLiteral("body")).toString();
    const QVariantMap reply = jsonToMap(result.body);
    result.parameterName = reply.value(QStringLiteral("param_name")).toString();
    result.value = reply.value(QStringLiteral("value"));
    return result;
}
