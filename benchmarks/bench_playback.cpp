// SPDX-License-Identifier: MIT
#include "benchmarks/bench_support.h"
#include "benchmarks/playback_child.h"
#include "simulator/virtual_box.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QPixmap>
#include <QScreen>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr const char* boxAddress = "127.77.34.1";
constexpr int roundCount = 7;

/// A film with moving content, made once and kept in a temporary folder.
QString film(const QString& name, const QStringList& source)
{
    QDir folder(QDir::tempPath() + "/tarn-hub-films");
    folder.mkpath(".");
    const QString file = folder.filePath(name);
    if (!QFile::exists(file)) {
        const QString part = folder.filePath("part-" + name);
        if (QProcess::execute("ffmpeg",
                              QStringList{"-v", "error", "-y", "-nostdin"} + source << part) != 0 ||
            !QFile::rename(part, file))
            qFatal("ffmpeg did not make %s", qPrintable(file));
    }
    return file;
}

QString testFilm(const QString& name, int rate, int seconds, const QString& encoder)
{
    return film(name.arg(seconds),
                QString("-f lavfi -i testsrc2=size=1920x1080:rate=%1 -t %2 %3 -pix_fmt yuv420p")
                    .arg(rate)
                    .arg(seconds)
                    .arg(encoder)
                    .split(' '));
}

QString h264(int seconds)
{
    return testFilm("h264-1080p60-%1.mp4", 60, seconds,
                    "-c:v libx264 -preset veryfast -b:v 12M -g 60");
}

QString hevc(int seconds)
{
    return testFilm("hevc-1080p30-%1.mp4", 30, seconds,
                    "-c:v libx265 -preset ultrafast -b:v 8M -g 30 -x265-params log-level=error");
}

/// A player's name and the command that plays `file` once at 1280x720 and ends.
struct Contestant {
    QString name;
    QStringList command;
};

QVector<Contestant> contestants(const QString& file)
{
    QVector<Contestant> all{
        {"Tarn Hub", {QCoreApplication::applicationFilePath(), "--play", file}}};
    if (!QStandardPaths::findExecutable("ffplay").isEmpty())
        all.append({"ffplay",
                    {"ffplay", "-v", "error", "-autoexit", "-an", "-noborder", "-x", "1280", "-y",
                     "720", "-left", "0", "-top", "0", file}});
    const QStringList mpv = {
        "mpv",        "--no-config", "--really-quiet", "--hwdec=no",
        "--no-audio", "--no-border", "--no-osc",       "--geometry=1280x720+0+0"};
    if (!QStandardPaths::findExecutable("mpv").isEmpty()) {
        all.append({"mpv", mpv + QStringList{file}});
        all.append({"mpv --vo=x11", mpv + QStringList{"--vo=x11", file}});
    }
    return all;
}

/// The display server's processor time in seconds, for a server on this computer.
double serverSeconds()
{
    const QString display = QString::fromLocal8Bit(qgetenv("DISPLAY")).mid(1).section('.', 0, 0);
    QFile lock("/tmp/.X" + display + "-lock");
    if (!lock.open(QIODevice::ReadOnly))
        return 0;
    QFile stat("/proc/" + QString::fromLatin1(lock.readAll().trimmed()) + "/stat");
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = stat.readAll().split(')').last().simplified().split(' ');
    return (fields.at(11).toDouble() + fields.at(12).toDouble()) / double(sysconf(_SC_CLK_TCK));
}

/// Runs a program to its end and says how much processor time it took, in seconds.
double run(const QStringList& command)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        QVector<QByteArray> words;
        QVector<char*> argv;
        for (const QString& word : command)
            words << word.toLocal8Bit();
        for (QByteArray& word : words)
            argv << word.data();
        argv << nullptr;
        dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
        execvp(argv.first(), argv.data());
        _exit(127);
    }
    rusage used{};
    int status = 0;
    wait4(child, &status, 0, &used);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        std::printf("%s did not end well\n", qPrintable(command.first()));
    const auto seconds = [](const timeval& t) {
        return double(t.tv_sec) + double(t.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

void compareProcessorTime(const char* title, const QString& file)
{
    std::printf("\n%s: processor time for the whole film\n", title);
    for (const Contestant& each : contestants(file)) {
        const double before = serverSeconds();
        const double used = run(each.command);
        std::printf("  %-14s %7.2f s   and the display server %6.2f s\n", qPrintable(each.name),
                    used, serverSeconds() - before);
        std::fflush(stdout);
    }
}

/// Whether there is a picture on the screen: away from the middle, where words may be.
bool isPictureShown()
{
    const QImage spot = QGuiApplication::primaryScreen()->grabWindow(0, 200, 160, 8, 8).toImage();
    const QColor colour = spot.pixelColor(4, 4);
    return std::max({colour.red(), colour.green(), colour.blue()}) > 90;
}

void waitForPicture(bool shown)
{
    QElapsedTimer clock;
    clock.start();
    while (isPictureShown() != shown) {
        if (clock.elapsed() > 10000)
            qFatal("waited in vain for %s", shown ? "a picture" : "an empty screen");
        QThread::usleep(500);
    }
}

/// A player that already runs, and how to tell it what to do.
struct Waiting {
    QString name;
    std::function<void(const QString&)> open;
    std::function<void()> close;
};

double medianFirstPicture(const Waiting& player, const QString& address)
{
    QVector<double> times;
    for (int n = 0; n < roundCount; ++n) {
        QElapsedTimer clock;
        clock.start();
        player.open(address);
        waitForPicture(true);
        times << double(clock.nsecsElapsed()) / 1e6;
        player.close();
        waitForPicture(false);
        QThread::msleep(100);
    }
    std::sort(times.begin(), times.end());
    return times.at(roundCount / 2);
}

void printFirstPicture(const Waiting& player, const QStringList& addresses)
{
    for (const QString& address : addresses)
        std::printf("  %-22s %-10s %7.1f ms\n", qPrintable(player.name),
                    address.startsWith("http") ? "recording" : "file",
                    medianFirstPicture(player, address));
    std::fflush(stdout);
}

void ownFirstPicture(const QStringList& addresses)
{
    QProcess child;
    child.setStandardErrorFile(QProcess::nullDevice());
    child.start(QCoreApplication::applicationFilePath(), {"--wait"});
    child.waitForStarted();
    QThread::msleep(1500);
    const auto say = [&child](const QString& line) {
        child.write(line.toUtf8() + '\n');
        child.waitForBytesWritten();
    };
    printFirstPicture(
        {"Tarn Hub, running", [&](const QString& a) { say("open " + a); }, [&] { say("close"); }},
        addresses);
    child.closeWriteChannel();
    child.waitForFinished(5000);
}

void mpvFirstPicture(const QStringList& addresses)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("mpv");
    QProcess child;
    child.start("mpv", {"--no-config", "--idle", "--force-window=immediate", "--hwdec=no",
                        "--no-audio", "--no-border", "--no-osc", "--vo=x11", "--really-quiet",
                        "--geometry=1280x720+0+0", "--input-ipc-server=" + path});
    child.waitForStarted();
    QThread::msleep(2000);
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(5000))
        return void(std::printf("  mpv does not listen\n"));
    const auto say = [&socket](const QString& command) {
        socket.write("{\"command\":" + command.toUtf8() + "}\n");
        socket.waitForBytesWritten();
    };
    printFirstPicture({"mpv, running",
                       [&](const QString& a) { say("[\"loadfile\",\"" + a + "\"]"); },
                       [&] { say("[\"stop\"]"); }},
                      addresses);
    child.terminate();
    child.waitForFinished(5000);
}

/// Started for each film, since it cannot wait: its time includes its start.
void startedFirstPicture(const QStringList& addresses)
{
    for (int n = 1; n < contestants({}).size(); ++n) {
        QProcess child;
        QStringList command;
        printFirstPicture({contestants({}).at(n).name + ", started",
                           [&](const QString& address) {
                               command = contestants(address).at(n).command;
                               child.start(command.first(), command.mid(1));
                               child.waitForStarted();
                           },
                           [&] {
                               child.kill();
                               child.waitForFinished(5000);
                           }},
                          addresses);
    }
}

void compareFirstPicture(const QString& file)
{
    std::printf("\nFrom asking to the first picture on the screen, median of %d\n", roundCount);
    sim::VirtualBox box(boxAddress);
    if (!box.plugIn())
        qFatal("no virtual box: %s", qPrintable(box.errorString()));
    QFile content(file);
    if (!content.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file));
    box.addRecording("film.mp4", content.readAll());
    const QStringList addresses{file, QString("http://%1:8081/media/film.mp4").arg(boxAddress)};
    ownFirstPicture(addresses);
    if (!QStandardPaths::findExecutable("mpv").isEmpty())
        mpvFirstPicture(addresses);
    startedFirstPicture(addresses);
}

void steadiness(int seconds)
{
    const QString minute = h264(60);
    const QString file =
        seconds <= 60
            ? h264(seconds)
            : film(QString("h264-1080p60-%1.mp4").arg(seconds),
                   {"-stream_loop", QString::number(seconds / 60 - 1), "-i", minute, "-c", "copy"});
    std::printf("\n%d s of 1080p60 (%d pictures; wanted: none dropped, no gap over 30 ms, memory "
                "steady)\n  ",
                seconds, seconds * 60);
    std::fflush(stdout);
    QProcess child;
    child.setStandardErrorFile(QProcess::nullDevice());
    child.start(QCoreApplication::applicationFilePath(), {"--report", file});
    child.waitForFinished(-1);
    std::printf("%s\n", child.readAllStandardOutput().constData());
}

void mentionMissing()
{
    for (const char* name : {"ffplay", "mpv"})
        if (QStandardPaths::findExecutable(name).isEmpty())
            std::printf("%s is not installed: nothing to compare with.\n", name);
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
    options.addHelpOption();
    options.addOptions({{"seconds", "Length of the compared films.", "s", "30"},
                        {"steady", "How long to watch for drops, gaps and memory.", "s", "60"},
                        {"play", "Internal: play a file and end.", "file"},
                        {"report", "Internal: play a file, say how it went.", "file"},
                        {"wait", "Internal: play what the standard input says."}});
    options.process(app);
    if (options.isSet("play") || options.isSet("report"))
        return playOnce(options.value(options.isSet("play") ? "play" : "report"),
                        options.isSet("report"));
    if (options.isSet("wait"))
        return playOnDemand();
    mentionMissing();
    const int seconds = options.value("seconds").toInt();
    compareProcessorTime("1080p60 H.264 at 1280x720", h264(seconds));
    compareProcessorTime("1080p30 HEVC at 1280x720", hevc(seconds));
    compareFirstPicture(h264(seconds));
    steadiness(options.value("steady").toInt());
    return 0;
}
