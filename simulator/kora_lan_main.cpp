// SPDX-License-Identifier: MIT
// kora-lan: a network of virtual boxes for people and scripts.
#include "simulator/console.h"
#include "simulator/lan_commands.h"
#include "simulator/open_files.h"
#include "simulator/sample_clip.h"
#include "simulator/scenario.h"
#include "simulator/update_server.h"
#include "simulator/virtual_lan.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include <cstdio>
#include <optional>

namespace
{

constexpr int exitFailed = 1;
constexpr int exitWrongOption = 2;

void say(const QString& text)
{
    std::fputs((text + QLatin1Char('\n')).toUtf8().constData(), stdout);
    std::fflush(stdout);
}

void complain(const QString& text)
{
    std::fputs((QStringLiteral("kora-lan: ") + text + QLatin1Char('\n')).toUtf8().constData(),
               stderr);
}

struct Options {
    sim::LanPlan plan;
    QString runDir;
    QString scenario;
    QString updateServer; // address to serve updates on, empty: none
    QString updateKey;    // file with the key that signs them, empty: nobody does
    sim::UpdateServer::Lie updateLie = sim::UpdateServer::Lie::None;
    int parent = 0; // process to end with, 0: none
};

/// The value of a whole-number option, or nothing when it is not one from `min` to `max`.
std::optional<int> number(const QCommandLineParser& parser, const QString& option, int min, int max)
{
    bool ok = false;
    const int value = parser.value(option).toInt(&ok);
    if (!ok || value < min || value > max) {
        complain(QStringLiteral("--%1 needs a number from %2 to %3").arg(option).arg(min).arg(max));
        return std::nullopt;
    }
    return value;
}

/// What signatures lie about, or nothing when there is no such word.
std::optional<sim::UpdateServer::Lie> lieOf(const QString& word)
{
    const QStringList words{QString(), QStringLiteral("kind"), QStringLiteral("version"),
                            QStringLiteral("name"), QStringLiteral("digest")};
    const int place = word.isEmpty() ? 0 : words.indexOf(word);
    if (place < 0) {
        complain(QStringLiteral("--update-lie is about kind, version, name or digest"));
        return std::nullopt;
    }
    return sim::UpdateServer::Lie(place);
}

void describe(QCommandLineParser* parser, const QString& runDir)
{
    parser->setApplicationDescription(
        QStringLiteral("A network of virtual boxes on loopback addresses.\n"
                       "Reads commands on standard input:\n\n") +
        sim::LanCommands::help());
    parser->addHelpOption();
    parser->addVersionOption();
    const auto add = [parser](const char* name, const char* text, const char* value,
                              const QString& standard) {
        parser->addOption({QString::fromLatin1(name), QString::fromLatin1(text),
                           QString::fromLatin1(value), standard});
    };
    add("subnet", "Where the boxes live: a.b.c.0/24.", "subnet", QStringLiteral("127.77.0.0/24"));
    add("boxes", "How many KORA boxes.", "number", QStringLiteral("12"));
    add("first", "Last number of the first address.", "number", QStringLiteral("11"));
    add("reboot-seconds", "How long a reboot takes.", "seconds", QStringLiteral("10"));
    add("run-dir", "Where the file \"plugged\" for lan-fping is kept.", "dir", runDir);
    add("scenario", "Boxes with faults, and what happens to them.", "file", {});
    add("update-server", "Serve an update of the box firmware on this address, port 8070.",
        "address", {});
    add("update-key", "Sign what is served with the secret key in this file.", "file", {});
    add("update-lie", "Sign another kind, version, name or digest than it has.", "word", {});
    add("exit-with-parent", "End when this process does.", "pid", QStringLiteral("0"));
    add("web-port", "Port of the web-managed boxes.", "port", QStringLiteral("80"));
    parser->addOption({QStringLiteral("web"),
                       QStringLiteral("With one box of each web-managed model (the default).")});
    parser->addOption({QStringLiteral("no-web"), QStringLiteral("Without them.")});
    parser->addOption({QStringLiteral("any-address"),
                       QStringLiteral("Allow addresses outside of 127.0.0.0/8: only in a network "
                                      "namespace of its own.")});
}

/// Nothing when an option is wrong; the user has been told.
std::optional<Options> readOptions(const QCoreApplication& app)
{
    QCommandLineParser parser;
    describe(&parser, QDir::temp().filePath(QStringLiteral("kora-lan-") +
                                            QString::fromLocal8Bit(sim::console::userName())));
    if (!parser.parse(app.arguments())) {
        complain(parser.errorText());
        return std::nullopt;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        parser.showHelp(); // ends the program
    }
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    if (!parser.positionalArguments().isEmpty()) {
        complain(QStringLiteral("unexpected: ") + parser.positionalArguments().first());
        return std::nullopt;
    }
    const auto lie = lieOf(parser.value(QStringLiteral("update-lie")));
    const auto boxes = number(parser, QStringLiteral("boxes"), 0, 254);
    const auto first = number(parser, QStringLiteral("first"), 1, 254);
    const auto reboot = number(parser, QStringLiteral("reboot-seconds"), 0, 3600);
    const auto parent = number(parser, QStringLiteral("exit-with-parent"), 0, 1 << 30);
    const auto webPort = number(parser, QStringLiteral("web-port"), 1, 65535);
    if (!lie || !boxes || !first || !reboot || !parent || !webPort)
        return std::nullopt;
    Options options;
    options.plan.subnet = parser.value(QStringLiteral("subnet"));
    options.plan.boxes = *boxes;
    options.plan.first = *first;
    options.plan.web = !parser.isSet(QStringLiteral("no-web"));
    options.plan.webPort = quint16(*webPort);
    options.plan.rebootMs = *reboot * 1000;
    options.plan.restartMs = qMin(options.plan.restartMs, options.plan.rebootMs);
    options.plan.anyAddress = parser.isSet(QStringLiteral("any-address"));
    options.runDir = parser.value(QStringLiteral("run-dir"));
    options.scenario = parser.value(QStringLiteral("scenario"));
    options.updateServer = parser.value(QStringLiteral("update-server"));
    options.updateKey = parser.value(QStringLiteral("update-key"));
    options.updateLie = *lie;
    options.parent = *parent;
    return options;
}

void obey(sim::LanCommands* commands, const QByteArray& line)
{
    const auto answer = commands->run(QString::fromUtf8(line).trimmed());
    if (!answer.text.isEmpty())
        say(answer.text);
    say(answer.ok ? QStringLiteral("ok") : QStringLiteral("error"));
    if (answer.quit)
        QCoreApplication::quit();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kora-lan"));
    QCoreApplication::setApplicationVersion(QStringLiteral("1.0"));
    const auto options = readOptions(app);
    if (!options)
        return exitWrongOption;
    sim::allowOpenFiles();
    sim::VirtualLan lan(options->runDir);
    sim::Scenario scenario;
    if (!lan.populate(options->plan)) {
        complain(lan.errorString());
        return exitWrongOption;
    }
    if (!options->scenario.isEmpty() && !scenario.load(options->scenario, &lan)) {
        complain(scenario.errorString());
        return exitWrongOption;
    }
    if (!lan.plugInAll(scenario.unplugged())) {
        complain(lan.errorString());
        return exitFailed;
    }
    sim::UpdateServer updates(options->updateServer);
    updates.signWith(options->updateKey, options->updateLie);
    updates.furnish(QStringLiteral("1.0.0.10"));
    if (!options->updateServer.isEmpty() && !updates.start()) {
        complain(QStringLiteral("no update server on ") + options->updateServer);
        return exitFailed;
    }
    sim::LanCommands commands(&lan);
    QObject::connect(&scenario, &sim::Scenario::stepped, &app,
                     [](const QString& text) { say(QStringLiteral("step: ") + text); });
    sim::console::quitWhenAsked(&app);
    sim::console::readLines([&commands](const QByteArray& line) { obey(&commands, line); }, &app);
    if (options->parent > 0)
        sim::console::quitWith(options->parent, &app);
    sim::makeSampleClips();
    say(commands.run(QStringLiteral("list")).text);
    say(QStringLiteral("run directory: ") + options->runDir);
    say(QStringLiteral("ready"));
    scenario.start(&commands);
    return QCoreApplication::exec();
}
