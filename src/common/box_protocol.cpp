// SPDX-License-Identifier: MIT
#include "common/box_protocol.h"

#include <QRegularExpression>
#include <QUrl>

#include <functional>

namespace
{

/// One pass over `text`; `place` gives what stands for value n at that spot.
QString replaceNumbers(const QString& text, int count,
                       const std::function<QString(int index, bool insideQuotes)>& place)
{
    QString result;
    result.reserve(text.size() + 64);
    bool insideQuotes = false;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const int number =
            c == QLatin1Char('%') && i + 1 < text.size() ? text.at(i + 1).unicode() - u'0' : 0;
        if (number >= 1 && number <= count) {
            result += place(number - 1, insideQuotes);
            ++i;
            continue;
        }
        if (c == QLatin1Char('"'))
            insideQuotes = !insideQuotes;
        result += c;
    }
    return result;
}

bool hasBlank(const QString& text)
{
    for (const QChar c : text) {
        if (c.isSpace())
            return true;
    }
    return false;
}

/// A box's file name as one segment of a URL.
QString encoded(const QString& name)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(name));
}

} // namespace

namespace BoxProtocol
{

QStringList configurationParameters()
{
    static const QStringList names{
        NDIHXFormat,  NDIEncMode, NDIHXQuality, HXEncProfile, HXControlRate, NDIName,
        DHCP,         IPAddress,  NetMask,      NTPServer,    NDIHDR,        NDIHXGopLength,
        NDIHXBitRate, SDIVolume,  LineinVolume, LineinDelay,
    };
    return names;
}

bool isIpv4Address(const QString& text)
{
    const QVector<QStringRef> parts = text.splitRef(QLatin1Char('.'));
    if (parts.size() != 4)
        return false;
    for (const QStringRef& part : parts) {
        if (part.isEmpty() || part.size() > 3 ||
            (part.size() > 1 && part.at(0) == QLatin1Char('0')))
            return false;
        for (const QChar c : part) {
            if (c < QLatin1Char('0') || c > QLatin1Char('9'))
                return false;
        }
        if (part.toInt() > 255)
            return false;
    }
    return true;
}

bool isMacAddress(const QString& text)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\A[0-9A-Fa-f]{2}([:-]?[0-9A-Fa-f]{2}){5}\\z"));
    return pattern.match(text).hasMatch();
}

bool isSameMac(const QString& a, const QString& b)
{
    return !a.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
}

QString fill(const QString& text, const QStringList& values)
{
    return replaceNumbers(text, values.size(), [&](int n, bool) { return values.at(n); });
}

QString fillCommand(const QString& commandLine, const QStringList& values)
{
    return replaceNumbers(commandLine, values.size(), [&](int n, bool insideQuotes) {
        QString value = values.at(n);
        // Three double quotes in a row stand for one in the splitting rule of child processes.
        value.replace(QLatin1Char('"'), QStringLiteral("\"\"\""));
        // An argument ends at a zero: what is left could be the name of something else.
        value.replace(QChar(0), QChar::ReplacementCharacter);
        if (!insideQuotes && hasBlank(value))
            value = QLatin1Char('"') + value + QLatin1Char('"');
        return value;
    });
}

QString readUrl(const QString& ip, const QString& parameter)
{
    return fill(QStringLiteral("http://%1:8081/config?action=get&param_name=%2"), {ip, parameter});
}

QString dashboardUrl(const QString& ip)
{
    return fill(QStringLiteral("http://%1/cgi-bin/set-dashboard.cgi"), {ip});
}

QString mediaUrl(const QString& ip, const QString& name)
{
    return fill(QStringLiteral("http://%1:8081/media/%2"), {ip, encoded(name)});
}

QString escapeEquals(const QString& text)
{
    return QString(text).replace(QLatin1Char('='), QStringLiteral("%3D"));
}

QString escapeSeparators(QString text)
{
    text.replace(QLatin1Char('%'), QStringLiteral("%25"));
    text.replace(QChar(0), QStringLiteral("%00"));
    return text.replace(QLatin1Char('&'), QStringLiteral("%26"));
}

QString setCommand(const QString& parameter, const QString& value, const QString& ip)
{
    return fillCommand(
        QStringLiteral(
            "curl -d \"action=set&param_name=%1&value=%2\" -X POST http://%3:8081/config?"),
        {parameter, value, ip});
}

QString controlCommand(const QString& action, const QString& ip)
{
    return fillCommand(QStringLiteral("curl -d \"action=%1\" -X POST http://%2:8081/control?"),
                       {action, ip});
}

QString decodeOnCommand(const QString& ip, const QString& source)
{
    // Whoever has named it must not give the box an order.
    const QString name = QString(source).replace(QLatin1Char('&'), QStringLiteral("%26"));
    return fillCommand(
        QStringLiteral("curl -d \"action=%3&ndi_name='%2'\" -X POST http://%1:8081/control?"),
        {ip, name, DecodeOn});
}

QString streamPushCommand(const QString& ip, const QString& url)
{
    return fillCommand(
        QStringLiteral("curl -d \"action=%3&stream_url='%2'\" -X POST http://%1:8081/control?"),
        {ip, url, StreamOn});
}

QString streamListenCommand(const QString& ip, const QString& port, const QString& streamId)
{
    return fillCommand(
        QStringLiteral("curl -d \"action=%4&srt_mode=listener&srt_port=%2&stream_id='%3'\""
                       " -X POST http://%1:8081/control?"),
        {ip, port, streamId, StreamOn});
}

QString restartCommand(const QString& ip)
{
    return fillCommand(QStringLiteral("curl -d action=restart -X POST http://%1:8081/control?"),
                       {ip});
}

QString actionOf(const QString& commandLine)
{
    // No expression: none matches in a text with half a letter, wherever in it that is.
    const QString data = QStringLiteral("curl -d ");
    const QString mark = QStringLiteral("action=");
    const int at =
        data.size() + (commandLine.midRef(data.size(), 1) == QLatin1String("\"") ? 1 : 0);
    if (!commandLine.startsWith(data) || commandLine.midRef(at, mark.size()) != mark)
        return QString();
    const auto isPartOfIt = [](QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); };
    const int begin = at + mark.size();
    int end = begin;
    while (end < commandLine.size() && isPartOfIt(commandLine.at(end)))
        ++end;
    return commandLine.mid(begin, end - begin);
}

QString rebootCommand(const QString& ip)
{
    return fillCommand(QStringLiteral("curl -d action=reboot -X POST http://%1:8081/control?"),
                       {ip});
}

QString otaCommand(const QString& ip)
{
    return fillCommand(QStringLiteral("curl -d action=ota -X POST http://%1:8081/control?"), {ip});
}

QString uploadCommand(const QString& file, const QString& ip)
{
    QString path = file;
    // There the program takes a comma for a list of files and a semicolon for an attribute, unless
    // the path is quoted.
    if (path.contains(QLatin1Char(',')) || path.contains(QLatin1Char(';'))) {
        path.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
        path.replace(QLatin1Char('"'), QStringLiteral("\\\""));
        path = QLatin1Char('"') + path + QLatin1Char('"');
    }
    return fillCommand(QStringLiteral("curl -X POST -F \"ota_file=@%1\" http://%2:8081/upload"),
                       {path, ip});
}

QString recordOnCommand(const QString& ip, const QString& fileName)
{
    return fillCommand(
        QStringLiteral("curl -d \"action=%3&file_name=%2\" -X POST http://%1:8081/control?"),
        {ip, fileName, RecordOn});
}

QString recordDeleteCommand(const QString& fileName, const QString& ip)
{
    return fillCommand(
        QStringLiteral(
            "curl -d \"action=record_del&file_name=%1\" -X POST http://%2:8081/control?"),
        {escapeSeparators(fileName), ip});
}

QString downloadCommand(const QString& path, const QString& ip, const QString& fileName,
                        qint64 offset)
{
    const QString command = offset > 0
                                ? QStringLiteral("curl -v0 -C %4 -o \"%1\" http://%2:8081/media/%3")
                                : QStringLiteral("curl -v0 -o \"%1\" http://%2:8081/media/%3");
    return fillCommand(command, {path, ip, encoded(fileName), QString::number(offset)});
}

} // namespace BoxProtocol
