// SPDX-License-Identifier: MIT
#include "ui/window/options.h"

#include "device/sweep_plan.h"

#include <QCommandLineParser>
#include <QSet>
#include <QUrl>

namespace
{

/// Options that the application object takes out by itself, each followed by a value.
const char* const windowSystemOptions[] = {"-platform", "-style",    "-stylesheet",
                                           "-display",  "-geometry", "-platformtheme"};

QStringList withoutWindowSystemOptions(const QStringList& arguments)
{
    QSet<QString> known;
    for (const char* name : windowSystemOptions)
        known << QLatin1String(name) << QLatin1Char('-') + QLatin1String(name);
    QStringList rest;
    for (int i = 0; i < arguments.size(); ++i) {
        if (known.contains(arguments.at(i)))
            ++i;
        else
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
    return QStringLiteral("1.0.0.10");
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
    result.options.updateServer = parser.value(updateServer);
    while (result.options.updateServer.endsWith(QLatin1Char('/')))
        result.options.updateServer.chop(1);
    if (!isServer(QUrl(result.options.updateServer)))
        return failure(
            QStringLiteral("'%1' is not the address of a server.").arg(parser.value(updateServer)));
    return result;
}
