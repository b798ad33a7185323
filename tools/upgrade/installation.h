// SPDX-License-Identifier: MIT
#ifndef TOOLS_UPGRADE_INSTALLATION_H
#define TOOLS_UPGRADE_INSTALLATION_H

#include <string>

/// For whom the program in a folder was installed.
enum class Scope { AllUsers, CurrentUser, Nobody };

/// As the system's list of programs says; Nobody: it was unpacked by hand.
Scope scopeOf(const std::wstring& folder);

/// What a silent installer is told to install into this folder in the same way.
std::wstring installerOptions(Scope scope, const std::wstring& folder);

/// Appends a line to the log "update" below this data folder.
void logUpdate(const std::wstring& dataFolder, const std::wstring& event);

#endif
