// SPDX-License-Identifier: MIT
#ifndef TOOLS_UPGRADE_PATHS_H
#define TOOLS_UPGRADE_PATHS_H

#include <functional>
#include <string>

/// What the system calls an error, for a message or the log.
std::wstring errorText(unsigned long code);

/// The path of this program; empty when the system does not tell.
std::wstring ownPath();
/// All before the last backslash; empty when there is none.
std::wstring folderOf(const std::wstring& path);
/// All behind the last backslash.
std::wstring nameOf(const std::wstring& path);
bool endsWith(const std::wstring& text, const std::wstring& end);
/// As the file system compares names.
bool isSameName(const std::wstring& one, const std::wstring& other);
/// `path` is `folder` or lies in it; both in the form that finalPath() gives.
bool isWithin(const std::wstring& path, const std::wstring& folder);

/// A variable of the environment, or nothing.
std::wstring environmentValue(const wchar_t* name);

/// The path with all links followed and short names made long, without a backslash at its end;
/// empty when nothing is there.
std::wstring finalPath(const std::wstring& path);
/// The same for an open file.
std::wstring finalPathOf(void* file);

bool exists(const std::wstring& path);
bool isFolder(const std::wstring& path);
/// A folder reached through a link is not ours to look into.
bool isLink(const std::wstring& path);

/// Calls `visit` with the name of each entry of the folder; stops when it says false. False when
/// the folder cannot be read.
bool eachEntry(const std::wstring& folder,
               const std::function<bool(const std::wstring& name)>& visit);
/// Makes the folders above `path`, from below `base`, which exists.
bool makeFoldersAbove(const std::wstring& path, const std::wstring& base);
/// Removes a folder and what is in it; of a link only the link. True when it is gone.
bool removeTree(const std::wstring& path);

/// The whole file; empty when it cannot be read or is larger than `mostBytes`.
std::string readFile(const std::wstring& path, std::size_t mostBytes);
std::wstring fromUtf8(const std::string& text);
std::string toUtf8(const std::wstring& text);

#endif
