// SPDX-License-Identifier: MIT
#include "replacement.h"

#include "paths.h"

#include <windows.h>

#include <utility>

namespace
{

/// A scanner for viruses, or a tool of the program that is just ending, holds a file for a moment.
constexpr int mostTries = 20;
constexpr DWORD betweenTriesMs = 250;
constexpr int mostFormer = 20;
constexpr std::size_t mostFormerName = 10;

/// What is made only while it is installed has no size beforehand, and a portable program lacks it.
bool hasSize(const std::wstring& path, long long wanted)
{
    if (wanted < 0)
        return true;
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
        return false;
    return wanted == ((static_cast<long long>(data.nFileSizeHigh) << 32) | data.nFileSizeLow);
}

bool moveFile(const std::wstring& from, const std::wstring& to)
{
    for (int n = 0; n < mostTries; ++n) {
        if (MoveFileExW(from.c_str(), to.c_str(), 0))
            return true;
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED &&
            error != ERROR_LOCK_VIOLATION)
            return false;
        Sleep(betweenTriesMs);
    }
    return false;
}

/// The folders that `path` has below `base`, as far as nothing is in them.
void removeEmptyAbove(const std::wstring& path, const std::wstring& base)
{
    for (std::wstring at = folderOf(path); !at.empty(); at = folderOf(at))
        RemoveDirectoryW((base + L'\\' + at).c_str());
}

/// What an earlier run left goes, as far as nobody uses it any more.
std::wstring freeFormer(const std::wstring& folder)
{
    std::wstring path = folder + L'\\' + Replacement::formerName();
    for (int n = 1; !removeTree(path) && n < mostFormer; ++n)
        path = folder + L'\\' + std::to_wstring(n) + L'.' + Replacement::formerName();
    return path;
}

} // namespace

Replacement::Replacement(std::wstring folder)
    : m_folder(std::move(folder)), m_staging(m_folder + L'\\' + stagingName())
{
}

bool Replacement::isLeft(const std::wstring& name)
{
    return isSameName(name, stagingName()) || isSameName(name, formerName()) ||
           (name.size() <= mostFormerName && endsWith(name, L'.' + formerName()) &&
            name.find_first_not_of(L"0123456789") == name.find(L'.'));
}

void Replacement::clean(const std::wstring& folder)
{
    std::vector<std::wstring> left;
    eachEntry(folder, [&left](const std::wstring& name) {
        if (isLeft(name))
            left.push_back(name);
        return true;
    });
    for (const std::wstring& name : left)
        removeTree(folder + L'\\' + name);
}

Replacement::Outcome Replacement::run()
{
    m_next = Manifest::read(m_staging);
    if (!isWhole())
        return Incomplete;
    std::vector<Manifest::File> gone;
    for (const Manifest::File& file : Manifest::read(m_folder).files) {
        if (!m_next.has(file.path))
            gone.push_back(file);
    }
    m_former = freeFormer(m_folder);
    CreateDirectoryW(m_former.c_str(), nullptr);
    bool isDone = true;
    for (const Manifest::File& file : gone)
        isDone = isDone && exchange(file.path);
    for (const Manifest::File& file : m_next.files)
        isDone = isDone && exchange(file.path);
    if (!isDone || !exchange(Manifest::name()))
        return undo() ? Locked : Broken;
    tidy(gone);
    return Done;
}

bool Replacement::isWhole()
{
    m_culprit = Manifest::name();
    if (!m_next.isOurs || m_next.files.empty())
        return false;
    for (const Manifest::File& file : m_next.files) {
        m_culprit = file.path;
        if (!hasSize(m_staging + L'\\' + file.path, file.size))
            return false;
    }
    return true;
}

/// The present file, if there is one, goes to the former ones; the next one, if there is one,
/// comes.
bool Replacement::exchange(const std::wstring& path)
{
    m_culprit = path;
    const std::wstring present = m_folder + L'\\' + path;
    const std::wstring next = m_staging + L'\\' + path;
    return (!exists(present) || move(present, m_former + L'\\' + path)) &&
           (!exists(next) || move(next, present));
}

bool Replacement::move(const std::wstring& from, const std::wstring& to)
{
    if (!makeFoldersAbove(to, m_folder) || !moveFile(from, to))
        return false;
    m_moves.push_back({from, to});
    return true;
}

/// False when a file could not be moved back: the installation is neither old nor new then.
bool Replacement::undo()
{
    bool isWhole = true;
    while (!m_moves.empty()) {
        const Move last = m_moves.back();
        m_moves.pop_back();
        isWhole = moveFile(last.to, last.from) && isWhole;
    }
    removeTree(m_staging);
    // Not removeTree() here: what could not be moved back is not to be lost.
    for (const Manifest::File& file : m_next.files) {
        removeEmptyAbove(file.path, m_former);
        removeEmptyAbove(file.path, m_folder);
    }
    RemoveDirectoryW(m_former.c_str());
    return isWhole;
}

void Replacement::tidy(const std::vector<Manifest::File>& gone)
{
    removeTree(m_staging);
    // Who still runs the former version holds its files; the next upgrade removes them.
    removeTree(m_former);
    for (const Manifest::File& file : gone)
        removeEmptyAbove(file.path, m_folder);
}
