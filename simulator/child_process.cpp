// SPDX-License-Identifier: MIT
#include "simulator/child_process.h"

#ifdef __linux__
#include <csignal>

#include <sys/prctl.h>
#elif defined(_WIN32)
#include <windows.h>
#endif

namespace sim
{
namespace
{

#ifdef _WIN32

/// Closed by the system when this process ends, and with it everything in it.
HANDLE ownJob()
{
    static const HANDLE job = [] {
        const HANDLE made = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        return made;
    }();
    return job;
}

void takeAlong(qint64 child)
{
    const HANDLE handle =
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(child));
    if (!handle)
        return;
    AssignProcessToJobObject(ownJob(), handle);
    CloseHandle(handle);
}

#endif

} // namespace

ChildProcess::ChildProcess(QObject* parent) : QProcess(parent)
{
#ifdef _WIN32
    connect(this, &QProcess::started, this, [this] { takeAlong(processId()); });
#endif
}

ChildProcess::~ChildProcess()
{
    if (state() != NotRunning) {
        kill();
        waitForFinished(2000);
    }
}

void ChildProcess::setupChildProcess()
{
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
}

} // namespace sim
