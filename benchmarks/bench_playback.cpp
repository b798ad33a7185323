// SPDX-License-Identifier: MIT
#include "benchmarks/clock_sender.h"
#include "benchmarks/first_picture.h"
#include "benchmarks/live_lag.h"
#include "benchmarks/playback_child.h"
#include "benchmarks/playback_contestants.h"
#include "benchmarks/playback_cost.h"
#include "benchmarks/playback_films.h"
#include "benchmarks/playback_table.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>

#include <cstdio>
#include <functional>

namespace
{

constexpr double steadyGapMs = 50;
constexpr int uhdSeconds = 8;

void addOptions(QCommandLineParser& options)
{
    options.addHelpOption();
    options.addOptions(
        {{"only", "Parts to measure, of cost,first,lag,drift,steady.", "parts",
          "cost,first,lag,drift,steady"},
         {"runs", "How often each player is measured.", "n", "5"},
         {"seconds", "Length of the compared films.", "s", "15"},
         {"lag-seconds", "How long to look at each live picture.", "s", "8"},
         {"drift-seconds", "How long the fast clock runs before the look.", "s", "60"},
         {"steady", "How long to watch for drops, gaps and memory.", "s", "60"},
         {"uhd", "Look at the gaps of 2160p30 HEVC, too."},
         {"drift", "Only this player and a clock 100 ppm fast, for so long.", "minutes"},
         {"drift-way", "How that one is sent: http, udp or srt.", "way", "http"},
         {"drift-file", "Where the figures of that go.", "file", "drift.txt"},
         {"play", "Internal: play a source and end.", "source"},
         {"report", "Internal: play a source, say how it went.", "source"},
         {"wait", "Internal: play what the standard input says."},
         {"send", "Internal: send a live stream by http, udp or srt.", "way"},
         {"ppm", "Internal: how fast its clock is.", "n", "0"},
         {"burst", "Internal: how much of it comes at once.", "ms", "0"}});
}

int runInner(const QCommandLineParser& options)
{
    if (options.isSet("send"))
        return sendClock(
            {options.value("send"), options.value("ppm").toInt(), options.value("burst").toInt()});
    if (options.isSet("wait"))
        return playOnDemand();
    const bool report = options.isSet("report");
    return playOnce(options.value(report ? "report" : "play"), report);
}

int compare(const QCommandLineParser& options)
{
    const auto number = [&options](const char* name) { return options.value(name).toInt(); };
    const int runs = qMax(1, number("runs"));
    const int seconds = number("seconds");
    PlaybackTable table;
    const auto part = [&](const char* name, const std::function<void()>& measure) {
        if (!options.value("only").split(',').contains(name))
            return;
        QElapsedTimer clock;
        clock.start();
        measure();
        std::printf("%s: measured for %lld s\n", name, clock.elapsed() / 1000);
        std::fflush(stdout);
    };
    part("cost", [&] { measureCost(table, seconds, runs); });
    part("first", [&] { measureFirstPicture(table, PlaybackFilms::h264(seconds), runs); });
    part("lag", [&] { measureLag(table, number("lag-seconds"), runs); });
    part("drift", [&] { measureDrift(table, number("drift-seconds"), runs); });
    part("steady", [&] {
        measureSteadiness(table, "1080p60", PlaybackFilms::h264(number("steady")), steadyGapMs);
        if (options.isSet("uhd"))
            measureSteadiness(table, "2160p30 HEVC", PlaybackFilms::uhd(uhdSeconds), steadyGapMs);
    });
    return table.print() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtDebugMsg)
            std::fprintf(stderr, "%s\n", qPrintable(text));
    });
    QCommandLineParser options;
    addOptions(options);
    options.process(app);
    for (const char* inner : {"play", "report", "wait", "send"}) {
        if (options.isSet(inner))
            return runInner(options);
    }
    Contestants::mentionMissing();
    if (!options.isSet("drift"))
        return compare(options);
    const bool isNow = recordDrift(options.value("drift").toInt(), options.value("drift-way"),
                                   options.value("drift-file"));
    return isNow ? 0 : 1;
}
