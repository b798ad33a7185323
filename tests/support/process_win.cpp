// SPDX-License-Identifier: MIT
#include "tests/support/process.h"

#include <windows.h>
// They need the one before.
#include <psapi.h>
#include <tlhelp32.h>

namespace
{

/// A program that is open to us, or nothing.
class Opened
{
public:
    explicit Opened(qint64 program)
        : m_handle(OpenProcess(PROCESS_ALL_ACCESS, FALSE, DWORD(program)))
    {
    }
    ~Opened()
    {
        if (m_handle)
            CloseHandle(m_handle);
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    HANDLE handle() const { return m_handle; }

private:
    const HANDLE m_handle;
};

/// Calls `act` with each thread of that program, and counts them.
template <class Act> int forEachThread(qint64 program, const Act& act)
{
    const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    int found = 0;
    for (BOOL more = Thread32First(all, &entry); more; more = Thread32Next(all, &entry)) {
        if (entry.th32OwnerProcessID != DWORD(program))
            continue;
        act(entry.th32ThreadID);
        ++found;
    }
    CloseHandle(all);
    return found;
}

PROCESS_MEMORY_COUNTERS memoryCounters()
{
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters))
        qFatal("no word on the memory of this program");
    return counters;
}

} // namespace

bool isRunning(qint64 program)
{
    const Opened opened(program);
    return opened.handle() && WaitForSingleObject(opened.handle(), 0) == WAIT_TIMEOUT;
}

void freeze(qint64 program)
{
    const int frozen = forEachThread(program, [](DWORD id) {
        const HANDLE thread = OpenThread(THREAD_SUSPEND_RESUME, FALSE, id);
        SuspendThread(thread);
        CloseHandle(thread);
    });
    if (frozen == 0)
        qFatal("%lld has no thread", program);
}

void crash(qint64 program)
{
    const Opened opened(program);
    // A thread that begins where nothing is.
    const HANDLE thread =
        CreateRemoteThread(opened.handle(), nullptr, 0, nullptr, nullptr, 0, nullptr);
    if (!thread)
        qFatal("no thread can be started in %lld", program);
    CloseHandle(thread);
}

qint64 mostMemory()
{
    return qint64(memoryCounters().PeakWorkingSetSize);
}

qint64 memory()
{
    return qint64(memoryCounters().WorkingSetSize);
}

int threads()
{
    return forEachThread(GetCurrentProcessId(), [](DWORD) {});
}

int openHandles()
{
    DWORD count = 0;
    if (!GetProcessHandleCount(GetCurrentProcess(), &count))
        qFatal("no word on the handles of this program");
    return int(count);
}

double processorSeconds()
{
    FILETIME ignored, kernel, user;
    if (!GetProcessTimes(GetCurrentProcess(), &ignored, &ignored, &kernel, &user))
        qFatal("no word on the time of this program");
    const auto seconds = [](const FILETIME& time) {
        return (double(time.dwHighDateTime) * 4294967296.0 + double(time.dwLowDateTime)) / 1e7;
    };
    return seconds(kernel) + seconds(user);
}
