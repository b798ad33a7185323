// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

/// Decodes a box reply. Anything that is not a JSON object, broken text included, gives an empty
/// map, so that every key reads empty and the request counts as failed.
QVariantMap jsonToMap(const QByteArray& utf8);
QVariantMap jsonToMap(const QString& text);
