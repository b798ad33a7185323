// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

/// Measures the longest time for which the event loop of this thread served nothing.
class GapMeter
{
public:
    GapMeter();

    void start();
    void stop() { m_timer.stop(); }
    double longestMs() const { return double(m_longestNs) / 1e6; }
    int gapsOver(double ms) const;

private:
    static constexpr int PeriodMs = 1;

    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_longestNs = 0;
    QVector<qint64> m_gapsNs;
};

/// A network of virtual boxes in a process of its own.
class VirtualNetwork
{
public:
    /// Serves `boxes` KORA boxes from .1 upwards in `subnet`; ends the program when it cannot.
    VirtualNetwork(const QString& subnet, int boxes, const QStringList& commands = {});
    ~VirtualNetwork();
    /// Gives the network a command as kora-lan reads it.
    void command(const QString& line);

private:
    QTemporaryDir m_runDir;
    QProcess m_process;
};

/// Serves events until `done` holds; ends the program after `limitMs`.
void waitUntil(const std::function<bool()>& done, int limitMs, const char* what);
/// Serves events for this long.
void serve(int ms);
/// Processor time that this process has used so far, in seconds.
double processorSeconds();
/// Memory of this process, its open files and its threads.
qint64 residentBytes();
int openFiles();
int threadCount();
/// Notes something out of the ordinary, with the time, in the file that the environment's
/// TARN_BENCH_NOTES names; nothing is noted without one. Processes share the file.
void note(const QString& text);
/// Prints "name: value unit (wanted: limit)".
void report(const char* name, double value, const char* unit, const char* wanted);
