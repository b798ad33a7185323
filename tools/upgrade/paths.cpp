// SPDX-License-Identifier: MIT
#include "paths.h"

#include <windows.h>

#include <vector>

namespace
{

constexpr std::size_t longestSystemPath = 32768;

/// The system's own prefix of long paths.
std::wstring withoutPrefix(const std::wstring& path)
{
    if (path.compare(0, 8, L"\\\\?\\UNC\\") == 0)
        return L"\\\\" + path.substr(8);
    return path.compare(0, 4, L"\\\\?\\") == 0 ? path.substr(4) : path;
}

} // namespace

std::wstring errorText(unsigned long code)
{
    std::vector<wchar_t> text(1024);
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, code, 0, text.data(), DWORD(text.size()), nullptr);
    std::wstring result(text.data(), length);
    while (!result.empty() && result.back() <= L' ')
        result.pop_back();
    return result + L" (" + std::to_wstring(code) + L")";
}

std::wstring ownPath()
{
    std::vector<wchar_t> path(longestSystemPath);
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), DWORD(path.size()));
    return length < path.size() ? std::wstring(path.data(), length) : std::wstring();
}

std::wstring folderOf(const std::wstring& path)
{
    const std::size_t end = path.rfind(L'\\');
    return end == std::wstring::npos ? std::wstring() : path.substr(0, end);
}

std::wstring nameOf(const std::wstring& path)
{
    const std::size_t end = path.rfind(L'\\');
    return end == std::wstring::npos ? path : path.substr(end + 1);
}

bool isSameName(const std::wstring& one, const std::wstring& other)
{
    return CompareStringOrdinal(one.data(), int(one.size()), other.data(), int(other.size()),
                                TRUE) == CSTR_EQUAL;
}

bool endsWith(const std::wstring& text, const std::wstring& end)
{
    return text.size() >= end.size() && isSameName(text.substr(text.size() - end.size()), end);
}

bool isWithin(const std::wstring& path, const std::wstring& folder)
{
    if (folder.empty() || path.size() < folder.size() ||
        !isSameName(path.substr(0, folder.size()), folder))
        return false;
    return path.size() == folder.size() || path[folder.size()] == L'\\';
}

std::wstring environmentValue(const wchar_t* name)
{
    std::vector<wchar_t> value(longestSystemPath);
    const DWORD length = GetEnvironmentVariableW(name, value.data(), DWORD(value.size()));
    return length < value.size() ? std::wstring(value.data(), length) : std::wstring();
}

std::wstring finalPathOf(void* file)
{
    std::vector<wchar_t> path(longestSystemPath);
    const DWORD length = GetFinalPathNameByHandleW(file, path.data(), DWORD(path.size()), 0);
    if (length == 0 || length >= path.size())
        return std::wstring();
    std::wstring result = withoutPrefix(std::wstring(path.data(), length));
    while (!result.empty() && result.back() == L'\\')
        result.pop_back();
    return result;
}

std::wstring finalPath(const std::wstring& path)
{
    // Without FILE_FLAG_BACKUP_SEMANTICS no folder can be opened.
    const HANDLE file =
        CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return std::wstring();
    std::wstring result = finalPathOf(file);
    CloseHandle(file);
    return result;
}

bool exists(const std::wstring& path)
{
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool isFolder(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool isLink(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

bool eachEntry(const std::wstring& folder,
               const std::function<bool(const std::wstring& name)>& visit)
{
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    bool more = true;
    while (more) {
        const std::wstring name = entry.cFileName;
        more = (name == L"." || name == L".." || visit(name)) && FindNextFileW(search, &entry);
    }
    FindClose(search);
    return true;
}

bool makeFoldersAbove(const std::wstring& path, const std::wstring& base)
{
    const std::wstring folder = folderOf(path);
    if (folder.size() <= base.size())
        return true;
    if (!makeFoldersAbove(folder, base))
        return false;
    return CreateDirectoryW(folder.c_str(), nullptr) || isFolder(folder);
}

bool removeTree(const std::wstring& path)
{
    if (!isFolder(path)) {
        // What is read-only is not deleted otherwise.
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileW(path.c_str());
        return !exists(path);
    }
    if (!isLink(path)) {
        std::vector<std::wstring> names;
        eachEntry(path, [&names](const std::wstring& name) {
            names.push_back(name);
            return true;
        });
        for (const std::wstring& name : names)
            removeTree(path + L'\\' + name);
    }
    RemoveDirectoryW(path.c_str());
    return !exists(path);
}

std::string readFile(const std::wstring& path, std::size_t mostBytes)
{
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return std::string();
    std::string content(mostBytes + 1, '\0');
    DWORD count = 0;
    const bool isRead = ReadFile(file, content.data(), DWORD(content.size()), &count, nullptr);
    CloseHandle(file);
    content.resize(isRead && count <= mostBytes ? count : 0);
    return content;
}

std::wstring fromUtf8(const std::string& text)
{
    const int size = int(text.size());
    std::wstring result(std::size_t(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)),
                        L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), int(result.size()));
    return result;
}

std::string toUtf8(const std::wstring& text)
{
    const int size = int(text.size());
    std::string result(std::size_t(WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0,
                                                       nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, result.data(), int(result.size()), nullptr,
                        nullptr);
    return result;
}
