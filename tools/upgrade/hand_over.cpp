// SPDX-License-Identifier: MIT
#include "hand_over.h"

#include "folder_check.h"
#include "installation.h"
#include "manifest.h"
#include "paths.h"
#include "running.h"

#include <windows.h>
// It needs the one before.
#include <shellapi.h>

#include <utility>
#include <vector>

namespace
{

/// The program ends within two seconds; a slow computer, and one more user of it, get longer.
constexpr unsigned long endMs = 60000;
/// The question for the administrator's right is part of it.
constexpr DWORD installMs = 600000;
constexpr std::size_t longestLogged = 300;

// Exit codes of the installer.
constexpr unsigned long installed = 0;
constexpr unsigned long stillRuns = 3;
constexpr unsigned long neitherOldNorNew = 9;

/// What the program in this folder calls its data folder.
std::wstring dataFolderOf(const std::wstring& folder)
{
    return exists(folder + L"\\portable.txt") ? folder + L"\\data\\Tarn Hub" : dataFolder();
}

/// While it is open nobody can replace the file.
class HeldFile
{
public:
    explicit HeldFile(const std::wstring& path)
        : m_file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                             nullptr))
    {
    }
    ~HeldFile()
    {
        if (m_file != INVALID_HANDLE_VALUE)
            CloseHandle(m_file);
    }
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    std::wstring path() const
    {
        return m_file == INVALID_HANDLE_VALUE ? std::wstring() : finalPathOf(m_file);
    }

private:
    const HANDLE m_file;
};

/// The process of the installer, or nothing and the system's error.
HANDLE startInstaller(const std::wstring& path, const std::wstring& options, bool asAdministrator)
{
    SHELLEXECUTEINFOW order = {};
    order.cbSize = sizeof order;
    order.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
    order.lpVerb = asAdministrator ? L"runas" : L"open";
    order.lpFile = path.c_str();
    order.lpParameters = options.c_str();
    order.nShow = SW_SHOWNORMAL;
    return ShellExecuteExW(&order) ? order.hProcess : nullptr;
}

} // namespace

HandOver::HandOver(std::wstring program, std::wstring installer, std::wstring version)
    : m_folder(folderOf(ownPath()))
    , m_name(std::move(program))
    , m_installer(std::move(installer))
    , m_version(std::move(version))
{
}

void HandOver::run()
{
    logUpdate(dataFolderOf(m_folder),
              (L"升级开始 " + m_version + L" " + m_installer).substr(0, longestLogged));
    if (isSensible()) {
        install();
        // Who is still at work would be disturbed; a program that still runs is there already.
        if (m_problem != Text::StillInstalls && m_problem != Text::StillRuns)
            start();
    }
    logUpdate(dataFolderOf(m_folder),
              m_problem == Text::None ? L"升级完成" : text(m_problem) + (L" " + m_detail));
}

bool HandOver::isSensible()
{
    // A plain name: the program beside this one.
    const bool isName = staysBelow(m_name) && m_name.find(L'\\') == m_name.npos;
    if (!isName || !endsWith(m_name, L".exe") || !exists(m_folder + L'\\' + m_name) ||
        isSameName(m_name, nameOf(ownPath())))
        return fail(Text::NotAsked);
    return true;
}

bool HandOver::install()
{
    if (!waitForEnd(m_folder + L'\\' + m_name, endMs))
        return fail(Text::StillRuns);
    const HeldFile held(m_installer);
    const std::wstring path = held.path();
    const std::wstring downloads = finalPath(dataFolderOf(m_folder) + L"\\upgrade");
    if (path.empty() || downloads.empty() || !isSameName(folderOf(path), downloads) ||
        !endsWith(path, L".exe"))
        return fail(Text::NotOurs, m_installer.substr(0, longestLogged));
    const Scope scope = scopeOf(m_folder);
    const HANDLE process =
        startInstaller(path, installerOptions(scope, m_folder), scope == Scope::AllUsers);
    if (!process) {
        const DWORD error = GetLastError();
        return error == ERROR_CANCELLED ? fail(Text::Declined)
                                        : fail(Text::NotStarted, errorText(error));
    }
    DWORD exitCode = 0;
    const bool hasEnded = WaitForSingleObject(process, installMs) == WAIT_OBJECT_0 &&
                          GetExitCodeProcess(process, &exitCode);
    CloseHandle(process);
    if (!hasEnded)
        return fail(Text::StillInstalls);
    judge(exitCode);
    return m_problem == Text::None;
}

void HandOver::judge(unsigned long exitCode)
{
    if (exitCode == stillRuns)
        fail(Text::StillRuns);
    else if (exitCode == neitherOldNorNew)
        fail(Text::Damaged, m_installer);
    else if (exitCode != installed)
        fail(Text::Unchanged, L"(" + std::to_wstring(exitCode) + L")");
}

void HandOver::start()
{
    const std::wstring path = m_folder + L'\\' + m_name;
    std::wstring line = L'"' + path + L'"';
    STARTUPINFOW how = {};
    how.cb = sizeof how;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        m_folder.c_str(), &how, &process)) {
        // What went wrong before matters more only when it says what to do about this, too.
        if (m_problem != Text::Damaged)
            fail(Text::NoProgram, errorText(GetLastError()));
        return;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

bool HandOver::fail(Text problem, const std::wstring& detail)
{
    m_problem = problem;
    m_detail = detail;
    return false;
}
