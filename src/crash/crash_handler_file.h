// SPDX-License-Identifier: MIT
#pragma once

#include "crash/fixed_text.h"
#include "crash/minidump_writer.h"

#include <ctime>

/// The file of a dump: under a name of its own until it is whole. For signal handlers (Linux).
class CrashFile : public MinidumpOutput
{
public:
    /// Opens a new file for a dump of `when`; `stem` is folder and beginning of the name.
    bool open(const char* folder, const char* stem, std::time_t localTime);
    /// Forgets what was written.
    bool clear();
    /// Gives the file its name, under which nothing lay before.
    bool keep();
    void discard();

    bool append(const void* data, std::size_t size) override;
    bool replace(std::size_t place, const void* data, std::size_t size) override;

private:
    bool tryName(const char* folder);

    int m_file = -1;
    FixedText<4096> m_name;
    FixedText<4096> m_partName;
};
