// SPDX-License-Identifier: MIT
#include "simulator/form_body.h"

namespace sim
{
namespace
{

QString decoded(const QByteArray& raw)
{
    QByteArray bytes;
    bytes.reserve(raw.size());
    for (int i = 0; i < raw.size(); ++i) {
        bool isHex = false;
        // QByteArray::toInt would take " f" or "+f" for hexadecimal digits too.
        const QByteArray digits = raw[i] == '%' ? raw.mid(i + 1, 2) : QByteArray();
        const int code = digits.size() == 2 && QByteArray("+- \t\n\r").indexOf(digits[0]) < 0
                             ? digits.toInt(&isHex, 16)
                             : 0;
        if (isHex) {
            bytes.append(static_cast<char>(code));
            i += 2;
        } else {
            bytes.append(raw[i]);
        }
    }
    return QString::fromUtf8(bytes);
}

} // namespace

QMap<QString, QString> parseForm(const QByteArray& body)
{
    QMap<QString, QString> fields;
    for (const QByteArray& part : body.split('&')) {
        if (part.isEmpty())
            continue;
        const int equals = part.indexOf('=');
        const QByteArray name = equals < 0 ? part : part.left(equals);
        fields.insert(decoded(name), equals < 0 ? QString() : decoded(part.mid(equals + 1)));
    }
    return fields;
}

QString withoutQuotes(QString value)
{
    if (value.startsWith(QLatin1Char('\'')))
        value.remove(0, 1);
    if (value.endsWith(QLatin1Char('\'')))
        value.chop(1);
    return value;
}

} // namespace sim
