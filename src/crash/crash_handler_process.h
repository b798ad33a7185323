// SPDX-License-Identifier: MIT
#pragma once

#include "crash/fixed_text.h"
#include "crash/minidump_writer.h"

#include <sys/types.h>

/// The crashed process as its dump shows it (Linux). Everything here may run in a signal handler:
/// it takes no memory and no locks. There is one of it at a time.
class CrashProcess : public MinidumpMemory
{
public:
    struct Mapping {
        std::uint64_t start = 0;
        std::uint64_t end = 0;
        bool readable = false;
        bool executable = false;
        FixedText<1024> path;
    };
    struct Module {
        FixedText<1024> path;
        std::uint64_t base = 0;
        std::uint64_t end = 0;
        unsigned char buildId[MinidumpWriter::maxBuildId]{};
        std::size_t buildIdSize = 0;
    };
    struct Stack {
        std::uint64_t start = 0;
        std::size_t size = 0;
    };

    /// What lies from `address` on in its mapping belongs in no dump: the program's environment
    /// stands above the main thread's stack and may hold passwords.
    void hideFrom(std::uint64_t address) { m_hidden = address; }

    /// Reads what is mapped in process `pid`: this one, or the one that this one was forked from.
    void look(pid_t pid);

    /// Stops the other threads of the process, `except` excepted, as far as the system allows, and
    /// returns how many. They run again when the calling process ends.
    std::size_t stopThreads(pid_t except);
    /// The number of the n-th stopped thread.
    pid_t thread(std::size_t n) const;
    /// The registers of the n-th stopped thread; false when they cannot be had.
    bool registers(std::size_t n, Minidump::ContextAmd64& context) const;

    /// Takes the next program file in memory, the program's own first; false after the last.
    /// `position` begins with 0.
    bool nextModule(std::size_t& position, Module& module);

    /// What of the stack at this stack pointer is in use, `limit` bytes at most.
    Stack stackAt(std::uint64_t stackPointer, std::size_t limit) const;

    /// The system's list of what is mapped, as text.
    const char* maps() const;
    std::size_t mapsSize() const { return m_mapsSize; }

    /// Copies up to the end of the page. Unreadable addresses give 0.
    std::size_t read(std::uint64_t address, void* buffer, std::size_t size) override;

private:
    bool nextMapping(std::size_t& position, Mapping& mapping) const;
    void readBuildId(Module& module);
    bool readExactly(std::uint64_t address, void* buffer, std::size_t size);
    void findBuildId(std::uint64_t notes, std::uint64_t size, Module& module);

    pid_t m_pid = 0;
    std::uint64_t m_hidden = 0;
    std::size_t m_mapsSize = 0;
    std::size_t m_threadCount = 0;
    int m_pipe[2] = {-1, -1};
};

/// Reads a whole file, or as much of it as there is room for; returns the size. For signal
/// handlers.
std::size_t readWholeFile(const char* path, char* buffer, std::size_t room);
