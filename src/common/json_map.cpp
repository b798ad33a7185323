// SPDX-License-Identifier: MIT
#include "common/json_map.h"

#include <QJsonDocument>
#include <QJsonObject>

QVariantMap jsonToMap(const QByteArray& utf8)
{
    return QJsonDocument::fromJson(utf8).object().toVariantMap();
}

QVariantMap jsonToMap(const QString& text)
{
    return jsonToMap(text.toUtf8());
}
