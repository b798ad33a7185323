// SPDX-License-Identifier: MIT
#include "ui/window/options.h"

#include "device/sweep_plan.h"

#include <QCommandLineParser>
#include <QUrl>

// Set by the build.
#ifndef TARN_UPDATE_KEY
#define TARN_UPDATE_KEY ""
#endif

namespace
{

/// What desktops and session managers add: the application object takes these out by itself, those
/// of the first kind with the value behind them.
const char* const withValue =
    " platform platformpluginpath platformtheme plugin style stylesheet session display geometry"
    " qwindowgeometry qwindowtitle qwindowicon name title icon fontengine dialogs dpi visual ncols"
    " foreground fg background bg font fn ";
const char* const withoutValue = " reverse widgetcount sync nograb dograb cmap ";

bool isOneOf(const char* names, const QString& name)
{
    return !name.isEmpty() &&
           QLatin1String(names).contains(QLatin1Char(' ') + name + QLatin1Char(' '));
}

/// `argument` without its one or two hyphens; empty when it has none.
QString optionName(const QString& argument)
{
    const QString rest = argument.mid(argument.startsWith(QLatin1String("--")) ? 2 : 1);
    return argument.startsWith(QLatin1Char('-')) ? rest : QString();
}

/// A process serial number, which one system's finder adds.
bool isSerialNumber(const QString& name)
{
    return name.startsWith(QLatin1String("psn_"));
}

QStringList withoutWindowSystemOptions(const QStringList& arguments)
{
    QStringList rest;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString name = optionName(arguments.at(i));
        if (isOneOf(withValue, name))
            ++i;
        else if (!isOneOf(withValue, name.section(QLatin1Char('='), 0, 0)) &&
                 !isOneOf(withoutValue, name) && !isSerialNumber(name))
            rest << arguments.at(i);
    }
    return rest;
}

QString defaultUpdateServer()
{
    return QStringLiteral("https://update.tarn-hub.example");
}

/// Written out: the parser's own text needs an application object, and that a display.
QString helpText()
{
    return QStringLiteral(
               "Usage: tarn-hub [options]\n"
               "Finds, watches, configures, records from and updates KORA network video boxes.\n"
               "\n"
               "Options:\n"
               "  -h, --help             Show this help.\n"
               "  -v, --version          Show the version.\n"
               "  --subnet <a.b.c.0/24>  Sweep exactly this block instead of the computer's own\n"
               "                         networks. May be given more than once.\n"
               "  --fping <path>         The ping-sweep tool to use.\n"
               "  --update-server <URL>  Where to look for newer versions\n"
               "                         (%1).\n")
        .arg(defaultUpdateServer());
}

OptionsResult failure(const QString& message)
{
    OptionsResult result;
    result.outcome = OptionsResult::Error;
    result.text = QStringLiteral("tarn-hub: %1\nTry 'tarn-hub --help'.\n").arg(message);
    return result;
}

bool isServer(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"));
}

} // namespace

QString applicationVersion()
{
    return QStringLiteral(TARN_VERSION);
}

OptionsResult readOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    const QCommandLineOption subnet(QStringLiteral("subnet"), QString(), QStringLiteral("block"));
    const QCommandLineOption fping(QStringLiteral("fping"), QString(), QStringLiteral("path"));
    const QCommandLineOption updateServer(QStringLiteral("update-server"), QString(),
                                          QStringLiteral("URL"), defaultUpdateServer());
    parser.addOptions({help, version, subnet, fping, updateServer});

    if (!parser.parse(withoutWindowSystemOptions(arguments)))
        return failure(parser.errorText());
    OptionsResult result;
    if (parser.isSet(help) || parser.isSet(version)) {
        result.outcome = OptionsResult::ShowText;
        result.text = parser.isSet(help)
                          ? helpText()
                          : QStringLiteral("Tarn Hub %1\n").arg(applicationVersion());
        return result;
    }
    if (!parser.positionalArguments().isEmpty())
        return failure(
            QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().first()));
    result.options.sweep.fping = parser.value(fping);
    result.options.sweep.subnets = parser.values(subnet);
    for (const QString& block : qAsConst(result.options.sweep.subnets)) {
        if (blockAddress(block).isEmpty())
            return failure(
                QStringLiteral("'%1' is not a block of the form a.b.c.0/24.").arg(block));
    }
    result.options.updateKey = QByteArrayLiteral(TARN_UPDATE_KEY);
    result.options.updateServer = parser.value(updateServer);
    while (result.options.updateServer.endsWith(QLatin1Char('/')))
        result.options.updateServer.chop(1);
    if (!isServer(QUrl(result.options.updateServer)))
        return failure(
            QStringLiteral("'%1' is not the address of a server.").arg(parser.value(updateServer)));
    return result;
}
