// SPDX-License-Identifier: MIT
#ifndef TOOLS_UPGRADE_FOLDER_CHECK_H
#define TOOLS_UPGRADE_FOLDER_CHECK_H

#include <string>

/// Whether the program may be installed into this folder: one of its own, which is empty, not there
/// yet, or has the program in it. Not the root of a disk, the system's or a user's own folder, nor
/// where the program keeps its data.
bool mayInstallInto(const std::wstring& folder);

/// Whether the program, and nobody else, was installed into this folder.
bool isInstallation(const std::wstring& folder);

/// Where this user's data are, as the program finds them; empty when nobody knows.
std::wstring dataFolder();

#endif
