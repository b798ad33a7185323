// SPDX-License-Identifier: MIT
#include "benchmarks/live_lag.h"

#include "benchmarks/bench_support.h"
#include "benchmarks/clock_picture.h"
#include "benchmarks/clock_sender.h"
#include "benchmarks/playback_contestants.h"
#include "benchmarks/playback_screen.h"

#include <QFile>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace
{

constexpr double wantedLag = 1;
constexpr unsigned long lagLookMs = 2;
constexpr unsigned long settleMs = 3000;
constexpr int fastClockPpm = 1000;
constexpr int driftWatchSeconds = 5;
constexpr int recordPpm = 100;
constexpr int recordPeriodMs = 10000;
constexpr int lateMs = 200;
constexpr qint64 noteGapMs = 200;
constexpr double never = std::numeric_limits<double>::infinity();

/// What was seen of the clock on the screen for a while.
struct Sight {
    QVector<int> ages;
    int damaged = 0;
    qint64 longestGapMs = 0;

    double percentile(int percent) const
    {
        // A player whose picture cannot be read most of the time is not showing the stream.
        if (ages.isEmpty() || damaged > ages.size())
            return never;
        QVector<int> sorted = ages;
        std::sort(sorted.begin(), sorted.end());
        return sorted.at((sorted.size() - 1) * percent / 100);
    }
};

/// Reads the clock on the screen again and again.
class ClockWatch
{
public:
    bool waitForCode(bool shown)
    {
        const bool isSeen = PlaybackScreen::waitForClock(shown);
        m_changed = ClockPicture::nowMs();
        return isSeen;
    }

    Sight watch(int ms)
    {
        Sight sight;
        for (qint64 now = ClockPicture::nowMs(), end = now + ms; now < end;) {
            const qint64 before = now;
            const std::optional<int> code = PlaybackScreen::clockCode();
            now = ClockPicture::nowMs();
            if (now - before > noteGapMs)
                note(QString("watcher: looking took %1 ms").arg(now - before));
            if (code && code != m_last) {
                if (now - m_changed > noteGapMs)
                    note(QString("watcher: no new picture for %1 ms").arg(now - m_changed));
                m_last = code;
                sight.longestGapMs = std::max(sight.longestGapMs, now - m_changed);
                m_changed = now;
            }
            if (code)
                sight.ages << ClockPicture::ageMs(*code, now);
            else
                ++sight.damaged;
            QThread::msleep(lagLookMs);
        }
        // One that has not come to its end counts as far as it goes.
        sight.longestGapMs = std::max(sight.longestGapMs, ClockPicture::nowMs() - m_changed);
        return sight;
    }

private:
    std::optional<int> m_last;
    qint64 m_changed = 0;
};

struct LagRows {
    PlaybackTable::Row& middle;
    PlaybackTable::Row& high;
};

LagRows addRows(PlaybackTable& table, const QString& name)
{
    PlaybackTable::Row& middle = table.add(name, "ms", PlaybackTable::Wanted::Ratio, wantedLag);
    return {middle, table.add("  95th percentile", "ms")};
}

Sight seeStream(const Contestant& player, const ClockStream& stream, int afterMs, int seconds)
{
    ClockWatch watch;
    watch.waitForCode(false);
    const ClockSender sender(stream);
    const PlayerProcess process(player.playing(sender.address()));
    if (!watch.waitForCode(true))
        return {};
    QThread::msleep(settleMs + ulong(afterMs));
    return watch.watch(seconds * 1000);
}

void compareLag(PlaybackTable& table, const QString& name, const ClockStream& stream, int afterMs,
                int seconds, int runs)
{
    const LagRows rows = addRows(table, name);
    for (int run = 0; run < runs; ++run) {
        for (const Contestant& player : Contestants::forLive()) {
            const Sight sight = seeStream(player, stream, afterMs, seconds);
            rows.middle.note(player.name, sight.percentile(50));
            rows.high.note(player.name, sight.percentile(95));
        }
    }
}

} // namespace

void measureLag(PlaybackTable& table, int seconds, int runs)
{
    constexpr int burstMs = 3000;
    compareLag(table, "clock to screen, UDP", {"udp", 0, 0}, 0, seconds, runs);
    compareLag(table, "clock to screen, SRT", {"srt", 0, 0}, 0, seconds, runs);
    compareLag(table, "clock to screen, HTTP", {"http", 0, 0}, 0, seconds, runs);
    compareLag(table, "clock to screen, HTTP, after 3 s at once", {"http", 0, burstMs}, 0, seconds,
               runs);
}

void measureDrift(PlaybackTable& table, int driftSeconds, int runs)
{
    compareLag(table, QString("clock to screen, HTTP, %1 s of 1000 ppm").arg(driftSeconds),
               {"http", fastClockPpm, 0}, driftSeconds * 1000, driftWatchSeconds, runs);
}

bool recordDrift(int minutes, const QString& way, const QString& file)
{
    QFile record(file);
    if (!record.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        qFatal("cannot write %s", qPrintable(file));
    QFile::remove(file + ".notes");
    qputenv("TARN_BENCH_NOTES", QFile::encodeName(file + ".notes"));
    const ClockSender sender({way, recordPpm, 0});
    const PlayerProcess process(Contestants::forLive().first().playing(sender.address()));
    ClockWatch watch;
    if (!watch.waitForCode(true))
        return false;
    QThread::msleep(settleMs);
    watch.waitForCode(true);
    record.write("# seconds lag_ms memory_kb longest_gap_ms\n");
    double latest = 0;
    const qint64 start = ClockPicture::nowMs();
    while (ClockPicture::nowMs() - start < minutes * Q_INT64_C(60000)) {
        const Sight sight = watch.watch(recordPeriodMs);
        latest = std::max(latest, sight.percentile(50));
        record.write(QString("%1 %2 %3 %4\n")
                         .arg((ClockPicture::nowMs() - start) / 1000)
                         .arg(sight.percentile(50))
                         .arg(process.residentKb())
                         .arg(sight.longestGapMs)
                         .toUtf8());
    }
    std::printf("%d minutes of 100 ppm by %s: lag at most %.0f ms (wanted: %d)\n", minutes,
                qPrintable(way), latest, lateMs);
    return latest <= lateMs;
}
