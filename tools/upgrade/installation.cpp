// SPDX-License-Identifier: MIT
#include "installation.h"

#include "paths.h"

#include <windows.h>

#include <vector>

namespace
{

std::wstring registeredFolder(HKEY root)
{
    std::vector<wchar_t> value(4096);
    auto bytes = DWORD(value.size() * sizeof(wchar_t));
    const LSTATUS status = RegGetValueW(
        root, L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Tarn Hub",
        L"InstallLocation", RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY, nullptr, value.data(), &bytes);
    return status == ERROR_SUCCESS ? finalPath(value.data()) : std::wstring();
}

std::wstring now(const wchar_t* pattern)
{
    SYSTEMTIME time;
    GetLocalTime(&time);
    std::vector<wchar_t> text(64);
    swprintf(text.data(), text.size(), pattern, time.wYear, time.wMonth, time.wDay, time.wHour,
             time.wMinute, time.wSecond, time.wMilliseconds);
    return text.data();
}

} // namespace

Scope scopeOf(const std::wstring& folder)
{
    const std::wstring own = finalPath(folder);
    if (isSameName(registeredFolder(HKEY_CURRENT_USER), own))
        return Scope::CurrentUser;
    return isSameName(registeredFolder(HKEY_LOCAL_MACHINE), own) ? Scope::AllUsers : Scope::Nobody;
}

std::wstring installerOptions(Scope scope, const std::wstring& folder)
{
    const wchar_t* const mode = scope == Scope::AllUsers      ? L"/AllUsers"
                                : scope == Scope::CurrentUser ? L"/CurrentUser"
                                                              : L"/Portable";
    // The folder goes to the end of the line, without quotes, whatever is in it.
    return std::wstring(L"/S ") + mode + L" /D=" + folder;
}

void logUpdate(const std::wstring& dataFolder, const std::wstring& event)
{
    const std::wstring path =
        dataFolder + L"\\log\\" + now(L"%04d-%02d-%02d") + L"---update_tarn_hub.txt";
    const HANDLE file =
        CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    const std::string line = toUtf8(L"[" + now(L"%04d-%02d-%02d %02d:%02d:%02d:%03d") + L"][" +
                                    event + L"][Upgrade.exe][]\n");
    DWORD written = 0;
    WriteFile(file, line.data(), DWORD(line.size()), &written, nullptr);
    CloseHandle(file);
}
