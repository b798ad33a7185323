// SPDX-License-Identifier: MIT
#include "common/http_result.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace
{

const QString typeKey = QStringLiteral("type");
const QString idKey = QStringLiteral("id");
const QString deviceIpKey = QStringLiteral("deviceip");
const QString bodyKey = QStringLiteral("body");
const QString statusKey = QStringLiteral("httpstatus");

} // namespace

QVariantMap HttpResult::toMap(const QString& type, const QString& id, const QString& deviceIp,
                              const QString& body, int httpStatus)
{
    return {{typeKey, type},
            {idKey, id},
            {deviceIpKey, deviceIp},
            {bodyKey, body},
            {statusKey, httpStatus}};
}

QString HttpResult::typeOf(const QVariantMap& map)
{
    return map.value(typeKey).toString();
}

HttpResult HttpResult::fromMap(const QVariantMap& map)
{
    HttpResult result = fromBody(map.value(bodyKey).toString());
    result.type = typeOf(map);
    result.id = map.value(idKey).toString();
    result.deviceIp = map.value(deviceIpKey).toString();
    result.httpStatus = map.value(statusKey).toInt();
    return result;
}

HttpResult HttpResult::fromBody(const QString& body)
{
    HttpResult result;
    result.body = body;
    // Not the whole of it as a map: many answers come while boxes are watched.
    const QJsonObject reply = QJsonDocument::fromJson(body.toUtf8()).object();
    result.parameterName = reply.value(QStringLiteral("param_name")).toString();
    result.value = reply.value(QStringLiteral("value")).toVariant();
    result.status = reply.value(QStringLiteral("status")).toString();
    return result;
}

bool HttpResult::isRefusal() const
{
    if (!status.isEmpty() && !status.contains(QLatin1String("success")))
        return true;
    return !parameterName.isEmpty() && (!value.isValid() || value.isNull());
}
