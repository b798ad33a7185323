// SPDX-License-Identifier: MIT
//
// What the installer and the uninstaller leave to a program, because their own language can do it
// only badly: find processes by their path, replace many files or none, follow no links.
//
//   helper /check FOLDER          whether the program may be installed there
//   helper /installed FOLDER      whether it is
//   helper /runs FOLDER           whether it runs from there
//   helper /close FOLDER          asks it to close, and waits
//   helper /clean FOLDER          removes what broken off installations left there
//   helper /replace FOLDER        puts what lies in FOLDER\new.tmp into its place
//   helper /delete-data           removes this user's data
//
// The exit codes are among those of the installer.

#include "folder_check.h"
#include "paths.h"
#include "replacement.h"
#include "running.h"

#include <windows.h>
// It needs the one before.
#include <shellapi.h>

#include <string>

namespace
{

enum ExitCode {
    Good = 0,
    StillRuns = 3,
    WrongFolder = 4,
    CannotReplace = 5,
    WrongUsage = 8,
    NeitherOldNorNew = 9,
    DataRemain = 10
};

/// It ends within two seconds, once it has agreed; who is asked something needs longer.
constexpr unsigned long closeMs = 15000;

std::wstring programIn(const std::wstring& folder)
{
    return folder + L"\\Tarn Hub.exe";
}

ExitCode close(const std::wstring& program)
{
    askToClose(processesOf(program));
    return waitForEnd(program, closeMs) ? Good : StillRuns;
}

ExitCode replace(const std::wstring& folder)
{
    switch (Replacement(folder).run()) {
    case Replacement::Done:
        return Good;
    case Replacement::Broken:
        return NeitherOldNorNew;
    default:
        return CannotReplace;
    }
}

ExitCode deleteData()
{
    const std::wstring data = dataFolder();
    return data.empty() || !exists(data) || removeTree(data) ? Good : DataRemain;
}

ExitCode run(const std::wstring& order, const std::wstring& folder)
{
    if (order == L"/delete-data")
        return deleteData();
    if (folder.empty())
        return WrongUsage;
    if (order == L"/check")
        return mayInstallInto(folder) ? Good : WrongFolder;
    if (order == L"/installed")
        return isInstallation(folder) ? Good : WrongFolder;
    if (order == L"/runs")
        return processesOf(programIn(folder)).empty() ? Good : StillRuns;
    if (order == L"/close")
        return close(programIn(folder));
    if (order == L"/clean" && mayInstallInto(folder)) {
        Replacement::clean(folder);
        return Good;
    }
    if (order == L"/replace")
        return mayInstallInto(folder) ? replace(folder) : WrongFolder;
    return WrongUsage;
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    const auto word = [&](int n) { return words && n < count ? words[n] : L""; };
    const ExitCode code = run(word(1), word(2));
    LocalFree(words);
    return code;
}
