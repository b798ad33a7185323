// SPDX-License-Identifier: MIT
#include "simulator/parameters.h"

#include <QHostAddress>

#include <algorithm>
#include <iterator>

namespace sim
{
namespace
{

enum class Rule { ReadOnly, Text, Whole, Choice, Address };

struct ParameterRow {
    const char* name;
    Rule rule;
    int min;
    int max;
    const char* choices; // separated by '|'
};

constexpr int noLimit = 2000000000;

constexpr ParameterRow parameterRows[] = {
    {"eParam_DHCP", Rule::Choice, 0, 0, "0|1"},
    {"eParam_DeviceName", Rule::ReadOnly, 0, 0, ""},
    {"eParam_DiskSpace", Rule::ReadOnly, 0, 0, ""},
    {"eParam_FirmVersion", Rule::ReadOnly, 0, 0, ""},
    {"eParam_HDMIMode", Rule::Choice, 0, 0, "1|2"},
    {"eParam_HXControlRate", Rule::Choice, 0, 0, "CBR|VBR|CVBR"},
    {"eParam_HXEncProfile", Rule::Choice, 0, 0, "baseline|main|high"},
    {"eParam_HardVersion", Rule::ReadOnly, 0, 0, ""},
    {"eParam_IPAddress", Rule::Address, 0, 0, ""},
    {"eParam_LineinDelay", Rule::Whole, 0, 341, ""},
    {"eParam_LineinVolume", Rule::Whole, 0, 32, ""},
    {"eParam_MACAddress", Rule::ReadOnly, 0, 0, ""},
    {"eParam_NDIEncMode", Rule::Choice, 0, 0, "0|1"},
    {"eParam_NDIHDR", Rule::Choice, 0, 0, "0|1"},
    {"eParam_NDIHXBitRate", Rule::Whole, 0, noLimit, ""},
    {"eParam_NDIHXFormat", Rule::Choice, 0, 0, "1|2|3|4"},
    {"eParam_NDIHXGopLength", Rule::Whole, 0, 200, ""},
    {"eParam_NDIHXQuality", Rule::Whole, 0, 4, ""},
    {"eParam_NDIName", Rule::Text, 0, 0, ""},
    {"eParam_NTPServer", Rule::Text, 0, 0, ""},
    {"eParam_NetMask", Rule::Address, 0, 0, ""},
    {"eParam_SDIVolume", Rule::Whole, 0, 32, ""},
    {"eParam_SdkVersion", Rule::ReadOnly, 0, 0, ""},
};

bool isAddress(const QString& value)
{
    QHostAddress address;
    return value.count(QLatin1Char('.')) == 3 && address.setAddress(value) &&
           address.protocol() == QAbstractSocket::IPv4Protocol;
}

bool isWhole(const QString& value, int min, int max)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    return ok && number >= min && number <= max;
}

} // namespace

QStringList parameterNames()
{
    QStringList names;
    for (const ParameterRow& row : parameterRows)
        names << QString::fromLatin1(row.name);
    return names;
}

bool isAcceptable(const QString& name, const QString& value)
{
    const auto row = std::find_if(std::begin(parameterRows), std::end(parameterRows),
                                  [&](const auto& r) { return name == QLatin1String(r.name); });
    if (row == std::end(parameterRows))
        return false;
    switch (row->rule) {
    case Rule::ReadOnly:
        return false;
    case Rule::Text:
        return true;
    case Rule::Whole:
        return isWhole(value, row->min, row->max);
    case Rule::Choice:
        return QString::fromLatin1(row->choices).split(QLatin1Char('|')).contains(value);
    case Rule::Address:
        return isAddress(value);
    }
    return false;
}

QMap<QString, QString> factorySettings(int number, const QString& address)
{
    static const char* const rooms[] = {"Studio",  "Stage",   "Chapel",  "Lobby",
                                        "Gallery", "Hall",    "Booth",   "Foyer",
                                        "Terrace", "Library", "Control", "Atrium"};
    static const char* const firmware[] = {"1.2.0.517", "1.2.0.517", "1.2.0.498", "1.1.9.460"};
    static const char* const formats[] = {"1", "2", "3", "4"};
    const QString room = QString::fromLatin1(rooms[number % int(std::size(rooms))]);
    const QString serial = QStringLiteral("%1").arg(number, 4, 10, QLatin1Char('0'));
    const auto text = [](const char* latin1) { return QString::fromLatin1(latin1); };
    return {
        {text("eParam_DHCP"), text("1")},
        {text("eParam_DeviceName"), QStringLiteral("KORA-%1").arg(serial)},
        {text("eParam_DiskSpace"), QString::number(118000 - (number * 7919) % 90000)},
        {text("eParam_FirmVersion"), text(firmware[number % int(std::size(firmware))])},
        {text("eParam_HDMIMode"), text("1")},
        {text("eParam_HXControlRate"), text(number % 3 == 0 ? "CBR" : "VBR")},
        {text("eParam_HXEncProfile"), text(number % 2 == 0 ? "main" : "high")},
        {text("eParam_HardVersion"), text(number % 4 == 3 ? "V1.3" : "V2.0")},
        {text("eParam_IPAddress"), address},
        {text("eParam_LineinDelay"), QString::number(number * 13 % 342)},
        {text("eParam_LineinVolume"), QString::number(16 + number % 17)},
        {text("eParam_MACAddress"), QStringLiteral("02:4B:4F:00:%1:%2")
                                        .arg(number / 256 % 256, 2, 16, QLatin1Char('0'))
                                        .arg(number % 256, 2, 16, QLatin1Char('0'))
                                        .toUpper()},
        {text("eParam_NDIEncMode"), text(number % 2 == 0 ? "0" : "1")},
        {text("eParam_NDIHDR"), text("0")},
        {text("eParam_NDIHXBitRate"), QString::number(1000 * (8 + number % 12))},
        {text("eParam_NDIHXFormat"), text(formats[number % int(std::size(formats))])},
        {text("eParam_NDIHXGopLength"), text("60")},
        {text("eParam_NDIHXQuality"), QString::number(number % 5)},
        {text("eParam_NDIName"), QStringLiteral("KORA %1 (%2)").arg(serial, room)},
        {text("eParam_NTPServer"), text("pool.ntp.org")},
        {text("eParam_NetMask"), text("255.255.255.0")},
        {text("eParam_SDIVolume"), QString::number(number * 5 % 33)},
        {text("eParam_SdkVersion"), text("5.6.0")},
    };
}

} // namespace sim
