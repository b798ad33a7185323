// SPDX-License-Identifier: MIT
#include "running.h"

#include "paths.h"

#include <windows.h>
// It needs the one before.
#include <tlhelp32.h>

#include <algorithm>

namespace
{

constexpr DWORD lookMs = 100;

std::wstring imageOf(DWORD process)
{
    const HANDLE handle = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process);
    if (!handle)
        return std::wstring();
    std::vector<wchar_t> path(32768);
    auto length = DWORD(path.size());
    const bool isKnown = QueryFullProcessImageNameW(handle, 0, path.data(), &length);
    CloseHandle(handle);
    return isKnown ? std::wstring(path.data(), length) : std::wstring();
}

/// A window of its own, not one that belongs to another: a dialog that is told to close means "no".
BOOL CALLBACK askWindow(HWND window, LPARAM asked)
{
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    const auto& processes = *reinterpret_cast<const std::vector<unsigned long>*>(asked);
    const bool isAsked = std::find(processes.begin(), processes.end(), process) != processes.end();
    if (isAsked && IsWindowVisible(window) && !GetWindow(window, GW_OWNER))
        PostMessageW(window, WM_CLOSE, 0, 0);
    return TRUE;
}

} // namespace

std::vector<unsigned long> processesOf(const std::wstring& path)
{
    std::vector<unsigned long> found;
    const std::wstring wanted = finalPath(path);
    const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (all == INVALID_HANDLE_VALUE)
        return found;
    PROCESSENTRY32W entry;
    entry.dwSize = sizeof entry;
    // The name first: it costs no opening of processes that are somebody else's business.
    for (BOOL more = Process32FirstW(all, &entry); more; more = Process32NextW(all, &entry)) {
        if (isSameName(nameOf(entry.szExeFile), nameOf(path)) &&
            isSameName(finalPath(imageOf(entry.th32ProcessID)), wanted))
            found.push_back(entry.th32ProcessID);
    }
    CloseHandle(all);
    return found;
}

void askToClose(const std::vector<unsigned long>& processes)
{
    EnumWindows(&askWindow, reinterpret_cast<LPARAM>(&processes));
}

bool waitForEnd(const std::wstring& path, unsigned long patienceMs)
{
    const ULONGLONG start = GetTickCount64();
    while (!processesOf(path).empty()) {
        if (GetTickCount64() - start >= patienceMs)
            return false;
        Sleep(lookMs);
    }
    return true;
}
