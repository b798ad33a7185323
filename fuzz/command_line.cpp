// SPDX-License-Identifier: MIT
// Text of boxes and users in command lines and addresses: it stays the one value that it is.
#include "common/box_protocol.h"
#include "fuzz/fuzz.h"

#include <QProcess>
#include <QUrl>

#include <functional>

namespace
{

namespace Box = BoxProtocol;

const QString ip = QStringLiteral("192.0.2.7");
const QString mark = QStringLiteral("MARK");

/// The arguments with `value` are those with a plain word, and `sent` stands where the word stood.
void requireOneValue(const std::function<QString(const QString&)>& command, const QString& value,
                     const QString& sent)
{
    // No argument can hold a zero.
    QStringList expected = QProcess::splitCommand(command(mark));
    const QString whole = QString(sent).replace(QChar(0), QChar::ReplacementCharacter);
    REQUIRE(expected.join(QLatin1Char('\n')).count(mark) == 1);
    for (QString& argument : expected)
        argument.replace(mark, whole);
    REQUIRE(QProcess::splitCommand(command(value)) == expected);
    REQUIRE(Box::actionOf(command(value)) == Box::actionOf(command(mark)));
}

QString percentEncoded(const QString& name)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(name));
}

void requireCommands(const QString& value)
{
    const QString name = QString(value).replace(QLatin1Char('&'), QLatin1String("%26"));
    requireOneValue([](const QString& v) { return Box::setCommand(Box::NDIName, v, ip); }, value,
                    value);
    requireOneValue([](const QString& v) { return Box::decodeOnCommand(ip, v); }, value, name);
    requireOneValue([](const QString& v) { return Box::streamPushCommand(ip, v); }, value, value);
    requireOneValue([](const QString& v) { return Box::streamListenCommand(ip, v, {}); }, value,
                    value);
    requireOneValue([](const QString& v) { return Box::streamListenCommand(ip, {}, v); }, value,
                    value);
    requireOneValue([](const QString& v) { return Box::recordOnCommand(ip, v); }, value, value);
    requireOneValue([](const QString& v) { return Box::recordDeleteCommand(v, ip); }, value,
                    Box::escapeSeparators(value));
    const QString path = QStringLiteral("/folder/");
    requireOneValue([=](const QString& v) { return Box::downloadCommand(path + v, ip, {}, 5); },
                    value, value);
    requireOneValue([=](const QString& v) { return Box::downloadCommand(path, ip, v); }, value,
                    percentEncoded(value));
}

/// As a box takes a field of a form apart.
QString unescaped(const QString& field)
{
    const QByteArray utf8 = QByteArray::fromPercentEncoding(field.toUtf8());
    return QString::fromUtf8(utf8.constData(), utf8.size());
}

void requireEscaping(const QString& value)
{
    const QString escaped = Box::escapeSeparators(value);
    const QByteArray utf8 = value.toUtf8();
    const QString plain = QString::fromUtf8(utf8.constData(), utf8.size());
    REQUIRE(!escaped.contains(QLatin1Char('&')));
    REQUIRE(unescaped(escaped) == plain);
    REQUIRE(!Box::escapeEquals(value).contains(QLatin1Char('=')));
    REQUIRE(Box::fill(QStringLiteral("%2|%1"), {value, mark}) == mark + QLatin1Char('|') + value);
}

/// A recording is asked for at its box, in the one folder.
void requireUrl(const QString& name)
{
    const QUrl url(Box::mediaUrl(ip, name), QUrl::StrictMode);
    REQUIRE(url.isValid() && url.host() == ip && url.port() == 8081 && url.userInfo().isEmpty());
    REQUIRE(!url.hasQuery() && !url.hasFragment());
    const QString path = url.path(QUrl::FullyEncoded);
    REQUIRE(path.startsWith(QLatin1String("/media/")));
    REQUIRE(path.count(QLatin1Char('/')) == 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString value = textOf(Input(data, size).rest());
    if (value.contains(mark))
        return 0;
    requireCommands(value);
    requireEscaping(value);
    requireUrl(value);
    return 0;
}
