// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// What each system does for CrashHandler. Without Qt: most of it runs in a process that is broken.
namespace CrashHandlerSystem
{

/// All of it UTF-8.
struct Setup {
    std::string folder;  ///< for the dumps, ending in "/"
    std::string program; ///< name and version, which the files' names begin with
    long utcOffset;      ///< seconds that local time is ahead of UTC
};

/// From now on a crash leaves a dump in the folder, then ends the process as it would have without.
/// Calling it again changes the setup. False where this system or processor has no dumps.
bool catchCrashes(const Setup& setup);

/// Gives the calling thread what it takes to write a dump when its stack has run out, until it
/// ends. The thread that calls catchCrashes() has it.
void coverThread();

} // namespace CrashHandlerSystem
