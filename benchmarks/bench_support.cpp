// SPDX-License-Identifier: MIT
#include "benchmarks/bench_support.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QThread>
#include <QTime>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace
{

constexpr int lookMs = 1;

} // namespace

GapMeter::GapMeter()
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(PeriodMs);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        const qint64 gap = std::max<qint64>(0, m_clock.nsecsElapsed() - PeriodMs * 1000000);
        m_clock.restart();
        m_longestNs = std::max(m_longestNs, gap);
        if (gap > 5000000)
            m_gapsNs << gap;
    });
}

void GapMeter::start()
{
    m_longestNs = 0;
    m_gapsNs.clear();
    m_clock.start();
    m_timer.start();
}

int GapMeter::gapsOver(double ms) const
{
    return int(std::count_if(m_gapsNs.begin(), m_gapsNs.end(),
                             [ms](qint64 gap) { return double(gap) / 1e6 > ms; }));
}

VirtualNetwork::VirtualNetwork(const QString& subnet, int boxes, const QStringList& commands)
{
    qputenv("KORA_LAN_RUN", m_runDir.path().toUtf8());
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // Boxes are other machines: here they have one processor, and of it what the window leaves.
    const QString last = QString::number(QThread::idealThreadCount() - 1);
    // They end with this program, however it ends.
    m_process.start("setpriv",
                    {"--pdeathsig", "TERM", "taskset", "--cpu-list", last, "chrt", "--idle", "0",
                     KORA_LAN, "--subnet", subnet, "--boxes", QString::number(boxes), "--first",
                     "1", "--no-web", "--run-dir", m_runDir.path()});
    QByteArray output;
    while (!output.contains("ready")) {
        if (!m_process.waitForReadyRead(20000))
            qFatal("the virtual network did not start: %s", output.constData());
        output += m_process.readAllStandardOutput();
    }
    for (const QString& line : commands)
        command(line);
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                     [this] { m_process.readAllStandardOutput(); });
}

void VirtualNetwork::command(const QString& line)
{
    m_process.write(line.toUtf8() + '\n');
    m_process.waitForBytesWritten();
}

VirtualNetwork::~VirtualNetwork()
{
    m_process.terminate();
    m_process.waitForFinished(5000);
}

void waitUntil(const std::function<bool()>& done, int limitMs, const char* what)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > limitMs)
            qFatal("waited %d ms in vain for: %s", limitMs, what);
        // Not after every event: looking costs processor time that would count as the window's.
        serve(lookMs);
    }
}

void serve(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

double processorSeconds()
{
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return double(used.tv_sec) + double(used.tv_nsec) / 1e9;
}

qint64 residentBytes()
{
    QFile status("/proc/self/statm");
    if (!status.open(QIODevice::ReadOnly))
        qFatal("no /proc");
    return status.readAll().split(' ').at(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

int openFiles()
{
    return int(QDir("/proc/self/fd").count());
}

int threadCount()
{
    return int(QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

void note(const QString& text)
{
    QFile notes(qEnvironmentVariable("TARN_BENCH_NOTES"));
    if (notes.fileName().isEmpty() || !notes.open(QIODevice::WriteOnly | QIODevice::Append))
        return;
    const QString time = QTime::currentTime().toString("HH:mm:ss.zzz");
    notes.write(QString("%1 %2\n").arg(time, text).toUtf8());
}

void report(const char* name, double value, const char* unit, const char* wanted)
{
    std::printf("%-52s %9.2f %-4s (wanted: %s)\n", name, value, unit, wanted);
    std::fflush(stdout);
}
