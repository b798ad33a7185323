// SPDX-License-Identifier: MIT
#pragma once

#include "crash/minidump_format.h"

#include <cstddef>

/// Where a dump goes. Its functions are called in a signal handler.
class MinidumpOutput
{
public:
    virtual bool append(const void* data, std::size_t size) = 0;
    /// Replaces what was appended `place` bytes from the beginning.
    virtual bool replace(std::size_t place, const void* data, std::size_t size) = 0;

protected:
    ~MinidumpOutput() = default;
};

/// Reads the memory of the process that crashed. Called in a signal handler.
class MinidumpMemory
{
public:
    /// Copies up to `size` bytes from `address`; returns how many could be read.
    virtual std::size_t read(std::uint64_t address, void* buffer, std::size_t size) = 0;

protected:
    ~MinidumpMemory() = default;
};

/// Writes a minidump piece by piece: first begin(), then the pieces in any order, the threads'
/// memory among them, then end(). It takes no memory and no locks, so that a signal handler may use
/// it; a full list drops what comes after, a failed write makes end() return false.
class MinidumpWriter
{
public:
    static constexpr std::size_t maxThreads = 512;
    static constexpr std::size_t maxModules = 1024;
    static constexpr std::size_t maxMemoryBlocks = maxThreads + 8;
    static constexpr std::size_t maxBuildId = 64;

    void begin(MinidumpOutput& output, MinidumpMemory& memory, std::uint32_t time);

    /// `stackSize` bytes from `stackStart` are saved as its stack, as far as they can be read.
    /// Returns where its registers lie in the file, for addException().
    Minidump::Location addThread(std::uint32_t id, const char* name,
                                 const Minidump::ContextAmd64& context, std::uint64_t stackStart,
                                 std::size_t stackSize);
    /// Saves some more memory.
    void addMemory(std::uint64_t address, std::size_t size);
    /// `path` is UTF-8.
    void addModule(const char* path, std::uint64_t base, std::uint32_t size, const void* buildId,
                   std::size_t buildIdSize);
    void addException(const Minidump::Exception& exception);
    void addSystemInfo(const char* systemVersion, unsigned processors);
    void addText(Minidump::Stream type, const void* text, std::size_t size);

    /// Writes the lists and the directory. False when anything could not be written.
    bool end();

private:
    static constexpr std::size_t maxStreams = 16;

    bool append(const void* data, std::size_t size);
    Minidump::Location appendMemory(std::uint64_t address, std::size_t size);
    /// A length in bytes, then UTF-16 with a closing zero.
    std::uint32_t appendString(const char* utf8);
    void appendList(Minidump::Stream type, const void* entries, std::size_t count,
                    std::size_t entrySize);
    void addStream(Minidump::Stream type, std::size_t start);

    MinidumpOutput* m_output = nullptr;
    MinidumpMemory* m_memory = nullptr;
    bool m_good = false;
    std::size_t m_size = 0;
    Minidump::Header m_header{};
    Minidump::DirectoryEntry m_directory[maxStreams]{};
    Minidump::Thread m_threads[maxThreads]{};
    Minidump::ThreadName m_threadNames[maxThreads]{};
    Minidump::MemoryBlock m_blocks[maxMemoryBlocks]{};
    Minidump::Module m_modules[maxModules]{};
    std::size_t m_threadCount = 0;
    std::size_t m_blockCount = 0;
    std::size_t m_moduleCount = 0;
};
