// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The parts of the minidump file format that MinidumpWriter uses. All numbers are little-endian,
/// without gaps between fields. A "place" is an offset from the beginning of the file.
namespace Minidump
{

constexpr std::uint32_t signature = 0x504d444d; // "MDMP"
constexpr std::uint32_t formatVersion = 0xa793;

enum class Stream : std::uint32_t {
    ThreadList = 3,
    ModuleList = 4,
    MemoryList = 5,
    Exception = 6,
    SystemInfo = 7,
    Comment = 10, // plain characters
    ThreadNames = 24,
    LinuxStatus = 0x47670004,
    LinuxRelease = 0x47670005,
    LinuxCommandLine = 0x47670006,
    LinuxMaps = 0x47670009,
};

#pragma pack(push, 1)

struct Location {
    std::uint32_t size;
    std::uint32_t place;
};

struct Header {
    std::uint32_t signature;
    std::uint32_t version;
    std::uint32_t streamCount;
    std::uint32_t directoryPlace;
    std::uint32_t checksum; // not used
    std::uint32_t time;     // seconds since 1970
    std::uint64_t flags;
};

struct DirectoryEntry {
    Stream type;
    Location location;
};

struct MemoryBlock {
    std::uint64_t address;
    Location content;
};

struct Thread {
    std::uint32_t id;
    std::uint32_t suspendCount;
    std::uint32_t priorityClass;
    std::uint32_t priority;
    std::uint64_t environmentBlock;
    MemoryBlock stack;
    Location context;
};

struct ThreadName {
    std::uint32_t id;
    std::uint64_t namePlace;
};

struct Module {
    std::uint64_t base;
    std::uint32_t size;
    std::uint32_t checksum;
    std::uint32_t time;
    std::uint32_t namePlace;
    std::uint32_t version[13];
    Location codeView;
    Location misc;
    std::uint64_t reserved[2];
};

/// A module's code view record that holds an ELF build id begins with this.
constexpr std::uint32_t buildIdSignature = 0x4270454c; // "LEpB" as bytes

struct Exception {
    std::uint32_t threadId;
    std::uint32_t alignment;
    std::uint32_t code;  // Linux: the signal
    std::uint32_t flags; // Linux: the signal's code
    std::uint64_t record;
    std::uint64_t address;
    std::uint32_t parameterCount;
    std::uint32_t alignment2;
    std::uint64_t parameters[15];
    Location context;
};

struct SystemInfo {
    std::uint16_t processor;
    std::uint16_t processorLevel;
    std::uint16_t processorRevision;
    std::uint8_t processorCount;
    std::uint8_t productType;
    std::uint32_t majorVersion;
    std::uint32_t minorVersion;
    std::uint32_t buildNumber;
    std::uint32_t platform;
    std::uint32_t versionTextPlace;
    std::uint16_t suiteMask;
    std::uint16_t reserved;
    std::uint64_t processorFeatures[3];
};

constexpr std::uint16_t processorAmd64 = 9;
constexpr std::uint32_t platformLinux = 0x8201;

/// The registers of an x86-64 processor.
struct ContextAmd64 {
    static constexpr std::uint32_t kind = 0x100000;
    /// Control, integer, segment and floating-point registers are given.
    static constexpr std::uint32_t filled = kind | 1 | 2 | 4 | 8;

    std::uint64_t parameterHomes[6];
    std::uint32_t flags;
    std::uint32_t mxcsr;
    std::uint16_t cs, ds, es, fs, gs, ss;
    std::uint32_t eflags;
    std::uint64_t debug[6];
    std::uint64_t rax, rcx, rdx, rbx, rsp, rbp, rsi, rdi;
    std::uint64_t r8, r9, r10, r11, r12, r13, r14, r15;
    std::uint64_t rip;
    std::uint8_t floatingPoint[512]; // as the FXSAVE instruction writes it
    std::uint8_t vectors[26][16];
    std::uint64_t vectorControl;
    std::uint64_t debugControl;
    std::uint64_t branches[4];
};

#pragma pack(pop)

static_assert(sizeof(Header) == 32, "");
static_assert(sizeof(Thread) == 48, "");
static_assert(sizeof(Module) == 108, "");
static_assert(sizeof(Exception) == 168, "");
static_assert(sizeof(SystemInfo) == 56, "");
static_assert(sizeof(ContextAmd64) == 1232, "");

} // namespace Minidump
