// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The one crash handler of the process: when the program crashes it leaves a minidump in its
/// folder, "TarnHub-<version>-<yyyyMMdd>-<hhmmss>.dmp" in local time. It sends nothing.
class CrashHandler
{
public:
    enum class Sanitizers {
        LeaveToThem, ///< a program built with a sanitizer keeps the sanitizer's own report
        Override,
    };

    /// The handler, made once whichever thread asks first; the others wait until it is there.
    static CrashHandler& instance();

    /// The folder, ending in "/", that dumps go to.
    void setDumpFolder(const QString& folder) { m_folder = folder; }
    QString dumpFolder() const { return m_folder; }

    /// Writes dumps into the folder from now on. False where that is not possible. Call it in the
    /// main thread.
    bool install(const QString& version, Sanitizers sanitizers = Sanitizers::LeaveToThem);

    /// Lets the calling thread leave a dump even when its stack has run out. The main thread can
    /// without; any other crash of any thread leaves one anyway.
    static void coverThread();

private:
    CrashHandler() = default;

    QString m_folder;
};
