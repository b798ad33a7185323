// SPDX-License-Identifier: MIT
#ifndef TOOLS_UPGRADE_RUNNING_H
#define TOOLS_UPGRADE_RUNNING_H

#include <string>
#include <vector>

/// The processes of the program at `path`, whoever runs them; a program of the same name elsewhere
/// is none of them.
std::vector<unsigned long> processesOf(const std::wstring& path);

/// Asks their windows to close, as a click on the cross does. The program may ask back or refuse.
void askToClose(const std::vector<unsigned long>& processes);

/// True when the program at `path` does not run any more; false when the patience is over.
bool waitForEnd(const std::wstring& path, unsigned long patienceMs);

#endif
