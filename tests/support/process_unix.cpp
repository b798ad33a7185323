// SPDX-License-Identifier: MIT
#include "tests/support/files.h"
#include "tests/support/process.h"

#include <csignal>
#include <ctime>
#include <unistd.h>

namespace
{

void send(qint64 program, int signal)
{
    if (::kill(pid_t(program), signal) != 0)
        qFatal("no signal reaches %lld", program);
}

/// A line of what the system knows of this program, in kilobytes there.
qint64 statusLine(const QByteArray& name)
{
    const QByteArray status = readFile("/proc/self/status");
    return status.mid(status.indexOf(name) + name.size())
               .trimmed()
               .split(' ')
               .first()
               .toLongLong() *
           1024;
}

int entries(const char* folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

bool isRunning(qint64 program)
{
    return isScriptRunning(program);
}

void freeze(qint64 program)
{
    send(program, SIGSTOP);
}

void crash(qint64 program)
{
    send(program, SIGSEGV);
}

qint64 mostMemory()
{
    return statusLine("VmHWM:");
}

qint64 memory()
{
    return readFile("/proc/self/statm").split(' ').at(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

int threads()
{
    return entries("/proc/self/task");
}

int openHandles()
{
    return entries("/proc/self/fd");
}

double processorSeconds()
{
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return double(used.tv_sec) + double(used.tv_nsec) / 1e9;
}
