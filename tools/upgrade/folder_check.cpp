// SPDX-License-Identifier: MIT
#include "folder_check.h"

#include "manifest.h"
#include "paths.h"
#include "replacement.h"

namespace
{

/// Leaves room for the longest name below it.
constexpr std::size_t longestFolder = 160;

bool isAbsolute(const std::wstring& path)
{
    const bool hasDrive = path.size() > 3 && path[1] == L':' && path[2] == L'\\';
    const bool isShare = path.size() > 4 && path[0] == L'\\' && path[1] == L'\\' &&
                         path.find(L'\\', path.find(L'\\', 2) + 1) != path.npos;
    return hasDrive || isShare;
}

/// For a folder that is not there yet: the final path of what there is, and the rest.
std::wstring wouldBe(const std::wstring& folder)
{
    std::wstring above = folder;
    while (!above.empty() && !exists(above))
        above = folderOf(above);
    // A disk is more than its letter and the colon.
    const bool isDisk = !above.empty() && above.back() == L':';
    return finalPath(isDisk ? above + L'\\' : above) + folder.substr(above.size());
}

bool belongsToOthers(const std::wstring& folder)
{
    for (const wchar_t* name : {L"SystemRoot", L"windir"}) {
        if (isWithin(folder, finalPath(environmentValue(name))))
            return true;
    }
    for (const wchar_t* name : {L"ProgramFiles", L"ProgramFiles(x86)", L"ProgramData", L"APPDATA",
                                L"LOCALAPPDATA", L"USERPROFILE", L"PUBLIC"}) {
        const std::wstring other = finalPath(environmentValue(name));
        if (!other.empty() && isWithin(other, folder))
            return true;
    }
    const std::wstring data = dataFolder();
    return !data.empty() && isWithin(folder, wouldBe(data));
}

bool isEmptyOrOurs(const std::wstring& folder)
{
    if (!exists(folder) || isInstallation(folder))
        return true;
    // A portable program: unpacked there, with its own data.
    if (exists(folder + L"\\portable.txt") && exists(folder + L"\\Tarn Hub.exe"))
        return true;
    bool isEmpty = true;
    const bool isRead = eachEntry(folder, [&isEmpty](const std::wstring& name) {
        // An installation that was broken off.
        isEmpty =
            endsWith(name, Replacement::stagingName()) || endsWith(name, Replacement::formerName());
        return isEmpty;
    });
    return isRead && isEmpty;
}

} // namespace

bool mayInstallInto(const std::wstring& folder)
{
    if (!isAbsolute(folder) || folder.size() > longestFolder ||
        folder.find_first_of(L"/*?\"<>|") != folder.npos || folder.find(L':', 2) != folder.npos)
        return false;
    const std::wstring real = wouldBe(folder);
    return isAbsolute(real) && !belongsToOthers(real) && isEmptyOrOurs(real);
}

bool isInstallation(const std::wstring& folder)
{
    return Manifest::read(folder).isOurs;
}

std::wstring dataFolder()
{
    std::wstring root = environmentValue(L"APPDATA");
    for (wchar_t& letter : root)
        letter = letter == L'/' ? L'\\' : letter;
    while (!root.empty() && root.back() == L'\\')
        root.pop_back();
    return root.empty() ? root : root + L"\\Tarn Hub";
}
