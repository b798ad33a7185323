// SPDX-License-Identifier: MIT
#include "benchmarks/playback_contestants.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

bool isInstalled(const QString& name)
{
    return !QStandardPaths::findExecutable(name).isEmpty();
}

/// Software decoding and the plainest way to the screen, as Tarn Hub has them.
QStringList mpv(const QStringList& more = {})
{
    return QStringList{"mpv",
                       "--no-config",
                       "--msg-level=all=no",
                       "--hwdec=no",
                       "--vo=x11",
                       "--no-audio",
                       "--no-border",
                       "--no-osc",
                       "--osd-level=0",
                       "--geometry=1280x720+0+0"} +
           more;
}

QStringList ffplay(const QStringList& more = {})
{
    return QStringList{"ffplay", "-v", "error", "-autoexit", "-an", "-noborder", "-x",
                       "1280",   "-y", "720",   "-left",     "0",   "-top",      "0"} +
           more;
}

/// Without a graphics card a picture costs less so, or is left out sooner, as the computer has it.
QStringList inSoftware(const QStringList& command)
{
    return QStringList{"env", "SDL_RENDER_DRIVER=software"} + command;
}

QVector<Contestant> installed(const QVector<Contestant>& all)
{
    QVector<Contestant> found{
        {Contestants::Own, {QCoreApplication::applicationFilePath(), "--play"}}};
    for (const Contestant& each : all) {
        if (isInstalled(each.name.section(' ', 0, 0)))
            found << each;
    }
    return found;
}

} // namespace

QVector<Contestant> Contestants::forFilms()
{
    return installed({{"mpv", mpv({"--msg-level=all=no,statusline=status",
                                   "--term-status-msg=dropped "
                                   "${frame-drop-count}/${decoder-frame-drop-count}"})},
                      {"ffplay", ffplay({"-stats"})},
                      {"ffplay software", inSoftware(ffplay({"-stats"}))}});
}

int Contestants::leftOut(const QString& said, int pictures)
{
    static const QRegularExpression shown("pictures (\\d+)");
    const QRegularExpressionMatch own = shown.match(said);
    if (own.hasMatch())
        return qMax(0, pictures - own.captured(1).toInt());
    // The others say it again and again.
    static const QRegularExpression dropped("(?:dropped|fd=) *(\\d+)(?:/(\\d+))?");
    int last = 0;
    for (auto each = dropped.globalMatch(said); each.hasNext();) {
        const QRegularExpressionMatch match = each.next();
        last = match.captured(1).toInt() + match.captured(2).toInt();
    }
    return last;
}

QVector<Contestant> Contestants::forLive()
{
    return installed(
        {{"mpv low-latency", mpv({"--profile=low-latency"})},
         {"ffplay nobuffer", ffplay({"-fflags", "nobuffer"})},
         {"ffplay low_delay", ffplay({"-fflags", "nobuffer", "-flags", "low_delay"})}});
}

QVector<Contestant> Contestants::waiting(const QString& socket)
{
    if (!isInstalled("mpv"))
        return {};
    const QStringList idle{"--idle", "--force-window=immediate", "--input-ipc-server=" + socket};
    return {{"mpv", mpv(idle)},
            {"mpv low-latency", mpv(QStringList{"--profile=low-latency"} + idle)}};
}

void Contestants::mentionMissing()
{
    for (const char* name : {"ffplay", "mpv"}) {
        if (!isInstalled(name))
            std::printf("%s is not installed: nothing to compare with.\n", name);
    }
}

PlayerProcess::PlayerProcess(const QStringList& command, const QString& output)
{
    QVector<QByteArray> words;
    QVector<char*> argv;
    for (const QString& word : command)
        words << word.toLocal8Bit();
    for (QByteArray& word : words)
        argv << word.data();
    argv << nullptr;
    char** const arguments = argv.data();
    const QByteArray path = output.toLocal8Bit();
    m_pid = fork();
    if (m_pid != 0)
        return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nothing = ::open("/dev/null", O_RDWR);
    dup2(nothing, STDIN_FILENO);
    const int said = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600);
    dup2(said, STDOUT_FILENO);
    dup2(said, STDERR_FILENO);
    execvp(arguments[0], arguments);
    _exit(127);
}

PlayerProcess::~PlayerProcess()
{
    if (m_pid <= 0)
        return;
    ::kill(m_pid, SIGKILL);
    collect(0);
}

bool PlayerProcess::collect(int flags)
{
    rusage used{};
    if (m_pid > 0 && wait4(m_pid, &m_status, flags, &used) == m_pid) {
        m_pid = 0;
        const auto seconds = [](const timeval& t) {
            return double(t.tv_sec) + double(t.tv_usec) / 1e6;
        };
        m_processorSeconds = seconds(used.ru_utime) + seconds(used.ru_stime);
    }
    return m_pid <= 0;
}

bool PlayerProcess::waitForEnd(int limitMs)
{
    constexpr unsigned long lookMs = 20;
    QElapsedTimer clock;
    clock.start();
    while (!collect(WNOHANG)) {
        if (clock.elapsed() > limitMs)
            return false;
        QThread::msleep(lookMs);
    }
    return WIFEXITED(m_status) && WEXITSTATUS(m_status) == 0;
}

qint64 PlayerProcess::residentKb() const
{
    QFile file(QString("/proc/%1/statm").arg(m_pid));
    if (m_pid <= 0 || !file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1024;
}
