// SPDX-License-Identifier: MIT
#pragma once

#include "common/limits.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QVariantMap>

#include <optional>

/// Whether Qt cannot read this JSON without losing memory, or it has more names, lists and objects
/// than `mostParts`.
bool isCostlyJson(const QByteArray& json, int mostParts = Limits::JsonParts);

/// The JSON object that somebody has sent; nothing for all other text, broken text included, and
/// for costly one.
std::optional<QJsonObject> jsonObject(const QByteArray& utf8, int mostParts = Limits::JsonParts);

/// Decodes a box reply. Anything that is not a JSON object gives an empty map, so that every key
/// reads empty and the request counts as failed.
QVariantMap jsonToMap(const QByteArray& utf8);
QVariantMap jsonToMap(const QString& text);
