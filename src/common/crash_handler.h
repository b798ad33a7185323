// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The one crash handler of the process. It knows the folder for crash dumps; it writes none yet.
class CrashHandler
{
public:
    /// The handler, made once whichever thread asks first; the others wait until it is there.
    static CrashHandler& instance();

    /// The folder, ending in "/", that dumps go to.
    void setDumpFolder(const QString& folder) { m_folder = folder; }
    QString dumpFolder() const { return m_folder; }

private:
    CrashHandler() = default;

    QString m_folder;
};
