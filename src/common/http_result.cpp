// SPDX-License-Identifier: MIT
#include "common/http_result.h"

#include "common/json_map.h"
#include "common/limit_log.h"
#include "common/limits.h"

#include <QJsonArray>

namespace
{

const QString typeKey = QStringLiteral("type");
const QString idKey = QStringLiteral("id");
const QString deviceIpKey = QStringLiteral("deviceip");
const QString bodyKey = QStringLiteral("body");
const QString statusKey = QStringLiteral("httpstatus");

constexpr const char* valueLimit = "characters of a value";
constexpr const char* listLimit = "entries of a list";
constexpr const char* partsLimit = "names and lists in a reply";

HttpResult failed(const char* limit)
{
    HttpResult result;
    result.exceeded = limit;
    return result;
}

/// A list with its first entries only, and none that is longer than a value may be.
QJsonValue bounded(const QJsonValue& value, const char*& exceeded)
{
    if (!value.isArray())
        return value;
    QJsonArray kept;
    const QJsonArray all = value.toArray();
    for (const QJsonValue& entry : all) {
        if (kept.size() == Limits::ListEntries) {
            exceeded = listLimit;
            break;
        }
        if (entry.toString().size() <= Limits::ValueChars)
            kept << entry;
        else
            exceeded = valueLimit;
    }
    return kept;
}

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
    const QString deviceIp = map.value(deviceIpKey).toString();
    HttpResult result = fromBody(map.value(bodyKey).toString());
    if (result.exceeded)
        limitReached(deviceIp, QString::fromLatin1(result.exceeded));
    result.type = typeOf(map);
    result.id = map.value(idKey).toString();
    result.deviceIp = deviceIp;
    result.httpStatus = map.value(statusKey).toInt();
    return result;
}

HttpResult HttpResult::fromBody(const QString& body)
{
    HttpResult result;
    result.body = body;
    // Not the whole of it as a map: many answers come while boxes are watched.
    const QByteArray utf8 = body.toUtf8();
    const std::optional<QJsonObject> read = jsonObject(utf8);
    if (!read && isCostlyJson(utf8))
        result.exceeded = partsLimit;
    const QJsonObject reply = read.value_or(QJsonObject());
    result.parameterName = reply.value(QStringLiteral("param_name")).toString();
    result.value = bounded(reply.value(QStringLiteral("value")), result.exceeded).toVariant();
    result.status = reply.value(QStringLiteral("status")).toString();
    for (const QString& text : {result.parameterName, result.value.toString(), result.status}) {
        if (text.size() > Limits::ValueChars)
            return failed(valueLimit);
    }
    return result;
}

bool HttpResult::isRefusal() const
{
    if (!status.isEmpty() && !status.contains(QLatin1String("success")))
        return true;
    return !parameterName.isEmpty() && (!value.isValid() || value.isNull());
}
