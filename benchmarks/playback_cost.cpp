// SPDX-License-Identifier: MIT
#include "benchmarks/playback_cost.h"

#include "benchmarks/playback_contestants.h"
#include "benchmarks/playback_films.h"
#include "benchmarks/playback_screen.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <cmath>
#include <cstdio>
#include <limits>

namespace
{

constexpr double wantedCost = 0.8;
constexpr double wantedLoopGapMs = 30;
/// When every player shows the film, and nobody has come to its end.
constexpr unsigned long lookAtSizeMs = 2500;
/// A film's edges may be dark here and there.
constexpr int darkEdge = 8;

bool isFullSize(const QRect& area)
{
    const QRect wanted(0, 0, PlaybackScreen::Width, PlaybackScreen::Height);
    return wanted.adjusted(-1, -1, 1, 1).contains(area) &&
           area.contains(wanted.adjusted(darkEdge, darkEdge, -darkEdge, -darkEdge));
}

struct Film {
    QString name;
    QString file;
    int seconds;
    int picturesPerSecond;
};

struct CostRows {
    PlaybackTable::Row& player;
    PlaybackTable::Row& server;
    PlaybackTable::Row& leftOut;
};

QString contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
}

void playFilm(const CostRows& rows, const Contestant& player, const Film& film)
{
    const QTemporaryDir folder;
    const QString said = folder.filePath("said");
    const double before = PlaybackScreen::serverSeconds();
    PlayerProcess process(player.playing(film.file), said);
    QThread::msleep(lookAtSizeMs);
    const QRect area = PlaybackScreen::brightArea();
    bool isGood = process.waitForEnd((2 * film.seconds + 10) * 1000);
    if (!isFullSize(area)) {
        std::printf("%s showed %dx%d at %d,%d: not counted.\n", qPrintable(player.name),
                    area.width(), area.height(), area.x(), area.y());
        isGood = false;
    }
    rows.player.note(player.name,
                     isGood ? process.processorSeconds() : std::numeric_limits<double>::infinity());
    rows.server.note(player.name, PlaybackScreen::serverSeconds() - before);
    rows.leftOut.note(player.name,
                      Contestants::leftOut(contentOf(said), film.seconds * film.picturesPerSecond));
}

void compareCost(PlaybackTable& table, const Film& film, int runs)
{
    const QString name = QString("processor time, %1 s %2").arg(film.seconds).arg(film.name);
    PlaybackTable::Row& cost = table.add(name, "s", PlaybackTable::Wanted::Ratio, wantedCost);
    PlaybackTable::Row& server = table.add("  display server meanwhile", "s");
    const CostRows rows{cost, server, table.add("  pictures left out", "")};
    for (int run = 0; run < runs; ++run) {
        for (const Contestant& player : Contestants::forFilms())
            playFilm(rows, player, film);
    }
}

} // namespace

void measureCost(PlaybackTable& table, int seconds, int runs)
{
    compareCost(table, {"1080p60 H.264", PlaybackFilms::h264(seconds), seconds, 60}, runs);
    compareCost(table, {"1080p30 HEVC", PlaybackFilms::hevc(seconds), seconds, 30}, runs);
}

void measureSteadiness(PlaybackTable& table, const QString& name, const QString& film,
                       double pictureGapMs)
{
    using Wanted = PlaybackTable::Wanted;
    QProcess child;
    child.setStandardErrorFile(QProcess::nullDevice());
    child.start(QCoreApplication::applicationFilePath(), {"--report", film});
    child.waitForFinished(-1);
    const QList<QByteArray> words = child.readAllStandardOutput().simplified().split(' ');
    const auto note = [&](const char* word, const char* unit, Wanted wanted, double limit) {
        const int at = words.indexOf(word);
        table.add(name + ", " + QString(word).replace('-', ' '), unit, wanted, limit)
            .note(Contestants::Own, at < 0 ? std::numeric_limits<double>::infinity()
                                           : words.value(at + 1).toDouble());
    };
    note("pictures", "", Wanted::Nothing, 0);
    note("dropped", "", Wanted::Limit, 0);
    note("longest-picture-gap", "ms", Wanted::Limit, pictureGapMs);
    note("longest-loop-gap", "ms", Wanted::Limit, wantedLoopGapMs);
    note("memory-grown", "kB", Wanted::Nothing, 0);
}
