// SPDX-License-Identifier: MIT
#include "benchmarks/first_picture.h"

#include "benchmarks/clock_sender.h"
#include "benchmarks/playback_contestants.h"
#include "benchmarks/playback_screen.h"
#include "simulator/virtual_box.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <functional>
#include <limits>
#include <memory>

namespace
{

constexpr const char* boxAddress = "127.77.34.1";
constexpr double wantedFirst = 1;
constexpr unsigned long playerStartMs = 1500;
constexpr unsigned long betweenMs = 300;
/// A player that joins in gets a key picture at once.
constexpr int keyPicturePeriodMs = 520;

struct Source {
    PlaybackTable::Row& row;
    QString address;
    bool (*waitForIt)(bool shown);
};

using Say = std::function<void()>;

double timeOfFirstPicture(const Source& source, const Say& open, const Say& close)
{
    QElapsedTimer clock;
    clock.start();
    open();
    const bool isShown = source.waitForIt(true);
    const double ms = double(clock.nsecsElapsed()) / 1e6;
    close();
    // A window may show its last picture once more after it was gone.
    source.waitForIt(false);
    QThread::msleep(betweenMs);
    source.waitForIt(false);
    return isShown ? ms : std::numeric_limits<double>::infinity();
}

/// Asks for every source, after one that is not counted: a player that runs has played before.
void askRunning(const QString& name, const QVector<Source>& sources,
                const std::function<void(const QString&)>& open, const Say& close)
{
    timeOfFirstPicture(
        sources.first(), [&] { open(sources.first().address); }, close);
    for (const Source& source : sources)
        source.row.note(name, timeOfFirstPicture(
                                  source, [&] { open(source.address); }, close));
}

void askOwn(const QVector<Source>& sources)
{
    QProcess child;
    child.setStandardErrorFile(QProcess::nullDevice());
    child.start(QCoreApplication::applicationFilePath(), {"--wait"});
    child.waitForStarted();
    QThread::msleep(playerStartMs);
    const auto say = [&child](const QString& line) {
        child.write(line.toUtf8() + '\n');
        child.waitForBytesWritten();
    };
    askRunning(
        Contestants::Own, sources, [&](const QString& address) { say("open " + address); },
        [&] { say("close"); });
    child.closeWriteChannel();
    child.waitForFinished(5000);
}

void askWaiting(const Contestant& player, const QString& socketPath, const QVector<Source>& sources)
{
    const PlayerProcess process(player.command);
    QThread::msleep(playerStartMs);
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    if (!socket.waitForConnected(5000)) {
        for (const Source& source : sources)
            source.row.note(player.name, std::numeric_limits<double>::infinity());
        return;
    }
    const auto say = [&socket](const QString& command) {
        socket.write("{\"command\":" + command.toUtf8() + "}\n");
        socket.waitForBytesWritten();
        socket.readAll();
    };
    askRunning(
        player.name, sources,
        [&](const QString& address) { say("[\"loadfile\",\"" + address + "\"]"); },
        [&] { say("[\"stop\"]"); });
}

void startForEach(const Contestant& player, const QVector<Source>& sources)
{
    for (const Source& source : sources) {
        std::unique_ptr<PlayerProcess> process;
        const auto open = [&] {
            process = std::make_unique<PlayerProcess>(player.playing(source.address));
        };
        source.row.note(player.name, timeOfFirstPicture(source, open, [&] { process.reset(); }));
    }
}

PlaybackTable::Row& addRow(PlaybackTable& table, const QString& what)
{
    return table.add("first picture, " + what, "ms", PlaybackTable::Wanted::Ratio, wantedFirst);
}

} // namespace

void measureFirstPicture(PlaybackTable& table, const QString& film, int runs)
{
    sim::VirtualBox box(boxAddress);
    if (!box.plugIn())
        qFatal("no virtual box: %s", qPrintable(box.errorString()));
    QFile content(film);
    if (!content.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(film));
    box.addRecording("film.mp4", content.readAll());
    const ClockSender sender({"http", 0, keyPicturePeriodMs});
    const QString recording = QString("http://%1:8081/media/film.mp4").arg(boxAddress);
    const QVector<Source> sources{
        {addRow(table, "file"), film, PlaybackScreen::waitForPicture},
        {addRow(table, "recording by HTTP"), recording, PlaybackScreen::waitForPicture},
        {addRow(table, "live by HTTP"), sender.address(), PlaybackScreen::waitForClock}};
    QTemporaryDir folder;
    const QString socket = folder.filePath("player");
    for (int run = 0; run < runs; ++run) {
        askOwn(sources);
        for (const Contestant& player : Contestants::waiting(socket)) {
            askWaiting(player, socket, sources);
            QFile::remove(socket);
        }
        for (const Contestant& player : Contestants::forLive()) {
            if (player.name.startsWith("ffplay"))
                startForEach(player, sources);
        }
    }
}
