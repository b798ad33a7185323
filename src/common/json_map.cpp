// SPDX-License-Identifier: MIT
#include "common/json_map.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QVector>

namespace
{

/// Qt reads nothing deeper.
constexpr int deepest = 1024;
/// So many plain values of a list cost as much as a name.
constexpr int valuesOfPart = 100;

/// An object or a list that is open, and the names in it.
struct Level {
    bool isObject = false;
    QByteArray name;         ///< the last
    bool isRepeated = false; ///< that one
    QHash<QByteArray, bool> hasParts;
};

/// Where the text that begins at `at` ends.
int endOfText(const QByteArray& json, int at)
{
    for (++at; at < json.size() && json.at(at) != '"'; ++at)
        at += json.at(at) == '\\' ? 1 : 0;
    return at;
}

/// The same name may be written in several ways.
QByteArray plainName(const QByteArray& written)
{
    if (!written.contains('\\'))
        return written;
    const QJsonArray read = QJsonDocument::fromJson('[' + written + ']').array();
    return '"' + read.at(0).toString().toUtf8() + '"';
}

/// The name of the value that begins; true when it stands for a list or an object already.
bool takeName(Level& level)
{
    const auto known = level.hasParts.constFind(level.name);
    level.isRepeated = known != level.hasParts.constEnd();
    if (!level.isRepeated)
        level.hasParts.insert(level.name, false);
    return level.isRepeated && *known;
}

} // namespace

/// Of two values with the same name in one object Qt 5 drops one; a list or an object is never
/// freed then, so that a box could fill the memory. And names are sorted, which takes long if there
/// are more than `mostParts`. As far as the text is JSON this reads it as Qt does; behind the first
/// fault Qt reads nothing.
bool isCostlyJson(const QByteArray& json, int mostParts)
{
    QVector<Level> levels(1);
    bool isName = false;
    int parts = 0;
    qint64 values = 0;
    for (int at = 0; at < json.size(); ++at) {
        const char c = json.at(at);
        Level& level = levels.last();
        if (c == '"') {
            const int end = endOfText(json, at);
            if (isName)
                level.name = plainName(json.mid(at, end + 1 - at));
            at = end;
        } else if (c == ':' && level.isObject) {
            isName = false;
            if (++parts > mostParts || takeName(level))
                return true;
        } else if (c == '{' || c == '[') {
            if (++parts > mostParts || level.isRepeated || levels.size() > deepest)
                return true;
            if (level.isObject)
                level.hasParts[level.name] = true;
            isName = c == '{';
            levels.append(Level());
            levels.last().isObject = isName;
        } else if ((c == '}' || c == ']') && levels.size() > 1) {
            levels.removeLast();
        } else if (c == ',') {
            if (++values / valuesOfPart > mostParts)
                return true;
            isName = level.isObject;
        }
    }
    return false;
}

std::optional<QJsonObject> jsonObject(const QByteArray& utf8, int mostParts)
{
    if (isCostlyJson(utf8, mostParts))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(utf8);
    return document.isObject() ? std::make_optional(document.object()) : std::nullopt;
}

QVariantMap jsonToMap(const QByteArray& utf8)
{
    return jsonObject(utf8).value_or(QJsonObject()).toVariantMap();
}

QVariantMap jsonToMap(const QString& text)
{
    return jsonToMap(text.toUtf8());
}
