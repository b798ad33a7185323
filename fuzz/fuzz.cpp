// SPDX-License-Identifier: MIT
#include "fuzz/fuzz.h"

#include <QDir>
#include <QStringList>

QString textOf(const QByteArray& written)
{
    const QString text = QString::fromUtf8(written);
    QString result;
    for (int at = 0; at < text.size(); ++at) {
        bool isUnit = false;
        const ushort unit = text.midRef(at).startsWith(QLatin1String("\\u"))
                                ? text.midRef(at + 2, 4).toUShort(&isUnit, 16)
                                : ushort(0);
        result += isUnit ? QChar(unit) : text.at(at);
        at += isUnit ? 5 : 0;
    }
    return result;
}

void requireFileName(const QString& name)
{
    REQUIRE(!name.isEmpty());
    // A number and a suffix of ours may be added.
    REQUIRE(name.toUtf8().size() <= 230 && name.size() <= 230);
    REQUIRE(QString::fromUtf8(name.toUtf8()) == name);
    for (const QChar c : name)
        REQUIRE(c.unicode() >= 0x20 && c.unicode() != 0x7f &&
                !QStringLiteral("/\\:*?\"<>|").contains(c));
    REQUIRE(!name.startsWith(QLatin1Char('.')) && !name.startsWith(QLatin1Char(' ')));
    REQUIRE(!name.endsWith(QLatin1Char('.')) && !name.endsWith(QLatin1Char(' ')));
    REQUIRE(QDir::cleanPath(QStringLiteral("/folder/") + name) ==
            QStringLiteral("/folder/") + name);
    // Windows takes these for devices, whatever follows a dot; a second file of a name gets a
    // number before the dot.
    QStringList devices{QStringLiteral("CON"), QStringLiteral("PRN"),    QStringLiteral("AUX"),
                        QStringLiteral("NUL"), QStringLiteral("CONIN$"), QStringLiteral("CONOUT$"),
                        QStringLiteral("COM"), QStringLiteral("LPT")};
    for (const QChar digit : QStringLiteral("0123456789\u00b9\u00b2\u00b3"))
        devices << QStringLiteral("COM") + digit << QStringLiteral("LPT") + digit;
    REQUIRE(!devices.contains(name.section(QLatin1Char('.'), 0, 0).trimmed().toUpper()));
}
