// SPDX-License-Identifier: MIT
#if defined(__linux__) && defined(__x86_64__)

#include "crash/crash_handler_process.h"

#include <elf.h>
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

namespace
{

constexpr std::uint64_t pageSize = 4096;

// Outside of the object, so that the program's file does not grow by them.
char mapsText[512 * 1024];
pid_t stopped[MinidumpWriter::maxThreads];

/// As the system call hands it out.
struct DirectoryItem {
    std::uint64_t inode;
    std::int64_t offset;
    unsigned short length;
    unsigned char type;
    char name[1];
};

std::uint64_t takeHex(const char*& at)
{
    std::uint64_t number = 0;
    for (;; ++at) {
        if (*at >= '0' && *at <= '9')
            number = number << 4 | static_cast<unsigned>(*at - '0');
        else if (*at >= 'a' && *at <= 'f')
            number = number << 4 | static_cast<unsigned>(*at - 'a' + 10);
        else
            return number;
    }
}

/// The number that the text is, 0 when it is none.
pid_t toNumber(const char* text)
{
    pid_t number = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        number = number * 10 + (*text - '0');
    return *text ? 0 : number;
}

void pauseOneMillisecond()
{
    const timespec time{0, 1000000};
    nanosleep(&time, nullptr);
}

template <class Use> void forEachThread(pid_t pid, Use use)
{
    FixedText<64> path;
    path.add("/proc/").add(static_cast<unsigned>(pid)).add("/task");
    const int folder = open(path.text(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    alignas(DirectoryItem) char buffer[4096];
    long size;
    while ((size = syscall(SYS_getdents64, folder, buffer, sizeof buffer)) > 0) {
        for (long at = 0; at < size;) {
            const auto* item = reinterpret_cast<const DirectoryItem*>(buffer + at);
            if (const pid_t thread = toNumber(item->name))
                use(thread);
            at += item->length;
        }
    }
    close(folder);
}

} // namespace

std::size_t readWholeFile(const char* path, char* buffer, std::size_t room)
{
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return 0;
    std::size_t size = 0;
    ssize_t got;
    while (size < room && (got = ::read(file, buffer + size, room - size)) > 0)
        size += static_cast<std::size_t>(got);
    close(file);
    return size;
}

void CrashProcess::look(pid_t pid)
{
    m_pid = pid;
    m_threadCount = 0;
    FixedText<64> path;
    path.add("/proc/").add(static_cast<unsigned>(pid)).add("/maps");
    m_mapsSize = readWholeFile(path.text(), mapsText, sizeof mapsText - 1);
    mapsText[m_mapsSize] = '\0';
    if (m_pipe[0] < 0 && pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        m_pipe[0] = m_pipe[1] = -1;
}

const char* CrashProcess::maps() const
{
    return mapsText;
}

std::size_t CrashProcess::stopThreads(pid_t except)
{
    constexpr int patienceMs = 500; // a thread inside a stuck driver does not stop
    std::size_t asked = 0;
    static pid_t candidates[MinidumpWriter::maxThreads];
    forEachThread(m_pid, [&](pid_t thread) {
        if (thread != except && asked < MinidumpWriter::maxThreads &&
            ptrace(PTRACE_SEIZE, thread, nullptr, nullptr) == 0 &&
            ptrace(PTRACE_INTERRUPT, thread, nullptr, nullptr) == 0)
            candidates[asked++] = thread;
    });
    int waited = 0;
    for (std::size_t i = 0; i < asked; ++i) {
        int status = 0;
        pid_t got;
        while ((got = waitpid(candidates[i], &status, __WALL | WNOHANG)) == 0 &&
               waited < patienceMs) {
            pauseOneMillisecond();
            ++waited;
        }
        if (got == candidates[i] && WIFSTOPPED(status))
            stopped[m_threadCount++] = candidates[i];
    }
    return m_threadCount;
}

pid_t CrashProcess::thread(std::size_t n) const
{
    return stopped[n];
}

bool CrashProcess::registers(std::size_t n, Minidump::ContextAmd64& context) const
{
    user_regs_struct general{};
    user_fpregs_struct floating{};
    if (ptrace(PTRACE_GETREGS, stopped[n], nullptr, &general) != 0)
        return false;
    context = {};
    context.flags = Minidump::ContextAmd64::filled;
    context.cs = static_cast<std::uint16_t>(general.cs);
    context.ds = static_cast<std::uint16_t>(general.ds);
    context.es = static_cast<std::uint16_t>(general.es);
    context.fs = static_cast<std::uint16_t>(general.fs);
    context.gs = static_cast<std::uint16_t>(general.gs);
    context.ss = static_cast<std::uint16_t>(general.ss);
    context.eflags = static_cast<std::uint32_t>(general.eflags);
    context.rax = general.rax;
    context.rcx = general.rcx;
    context.rdx = general.rdx;
    context.rbx = general.rbx;
    context.rsp = general.rsp;
    context.rbp = general.rbp;
    context.rsi = general.rsi;
    context.rdi = general.rdi;
    context.r8 = general.r8;
    context.r9 = general.r9;
    context.r10 = general.r10;
    context.r11 = general.r11;
    context.r12 = general.r12;
    context.r13 = general.r13;
    context.r14 = general.r14;
    context.r15 = general.r15;
    context.rip = general.rip;
    if (ptrace(PTRACE_GETFPREGS, stopped[n], nullptr, &floating) == 0) {
        static_assert(sizeof floating == sizeof context.floatingPoint, "");
        std::memcpy(context.floatingPoint, &floating, sizeof floating);
        context.mxcsr = floating.mxcsr;
    }
    return true;
}

bool CrashProcess::nextMapping(std::size_t& position, Mapping& mapping) const
{
    // "start-end rwxp offset device inode   path"
    const char* at = mapsText + position;
    if (!*at)
        return false;
    mapping = {};
    mapping.start = takeHex(at);
    if (*at == '-')
        ++at;
    mapping.end = takeHex(at);
    const char* lineEnd = std::strchr(at, '\n');
    if (!lineEnd)
        lineEnd = at + std::strlen(at);
    position = static_cast<std::size_t>(lineEnd - mapsText) + (*lineEnd ? 1 : 0);
    if (lineEnd - at < 5)
        return true;
    mapping.readable = at[1] == 'r';
    mapping.executable = at[3] == 'x';
    while (at < lineEnd && *at != '/')
        ++at;
    mapping.path.add(at, static_cast<std::size_t>(lineEnd - at));
    return true;
}

bool CrashProcess::nextModule(std::size_t& position, Module& module)
{
    Mapping mapping;
    while (nextMapping(position, mapping)) {
        char magic[SELFMAG];
        if (mapping.path.length() == 0 || !readExactly(mapping.start, magic, sizeof magic) ||
            std::memcmp(magic, ELFMAG, SELFMAG) != 0)
            continue;
        module = {};
        module.path = mapping.path;
        module.base = mapping.start;
        module.end = mapping.end;
        bool executable = mapping.executable;
        // The other mappings of the same file follow at once.
        Mapping next;
        for (std::size_t ahead = position;
             nextMapping(ahead, next) && std::strcmp(next.path.text(), module.path.text()) == 0;
             position = ahead) {
            module.end = next.end;
            executable = executable || next.executable;
        }
        if (!executable)
            continue;
        readBuildId(module);
        // An installed update has replaced the file; its name is still the best there is.
        constexpr char gone[] = " (deleted)";
        constexpr std::size_t goneLength = sizeof gone - 1;
        const std::size_t length = module.path.length();
        if (length > goneLength && std::strcmp(module.path.text() + length - goneLength, gone) == 0)
            module.path.cut(length - goneLength);
        return true;
    }
    return false;
}

void CrashProcess::readBuildId(Module& module)
{
    Elf64_Ehdr file;
    if (!readExactly(module.base, &file, sizeof file) || file.e_ident[EI_CLASS] != ELFCLASS64 ||
        file.e_phentsize != sizeof(Elf64_Phdr))
        return;
    // Addresses in the file count from where its first segment wants to be.
    std::uint64_t wanted = ~std::uint64_t(0);
    Elf64_Phdr part;
    for (unsigned n = 0; n < file.e_phnum; ++n) {
        if (!readExactly(module.base + file.e_phoff + n * sizeof part, &part, sizeof part))
            return;
        if (part.p_type == PT_LOAD && part.p_vaddr < wanted)
            wanted = part.p_vaddr & ~(pageSize - 1);
    }
    for (unsigned n = 0; n < file.e_phnum && module.buildIdSize == 0; ++n) {
        if (readExactly(module.base + file.e_phoff + n * sizeof part, &part, sizeof part) &&
            part.p_type == PT_NOTE)
            findBuildId(module.base + part.p_vaddr - wanted, part.p_memsz, module);
    }
}

void CrashProcess::findBuildId(std::uint64_t notes, std::uint64_t size, Module& module)
{
    const auto padded = [](std::uint32_t length) { return (std::uint64_t(length) + 3) & ~3ull; };
    constexpr int mostNotes = 32;
    Elf64_Nhdr note;
    std::uint64_t at = 0;
    for (int n = 0; n < mostNotes && at + sizeof note <= size; ++n) {
        if (!readExactly(notes + at, &note, sizeof note))
            return;
        const std::uint64_t name = at + sizeof note;
        const std::uint64_t content = name + padded(note.n_namesz);
        char owner[sizeof ELF_NOTE_GNU];
        if (note.n_type == NT_GNU_BUILD_ID && note.n_namesz == sizeof owner &&
            note.n_descsz <= sizeof module.buildId &&
            readExactly(notes + name, owner, sizeof owner) &&
            std::memcmp(owner, ELF_NOTE_GNU, sizeof owner) == 0 &&
            readExactly(notes + content, module.buildId, note.n_descsz)) {
            module.buildIdSize = note.n_descsz;
            return;
        }
        at = content + padded(note.n_descsz);
    }
}

CrashProcess::Stack CrashProcess::stackAt(std::uint64_t stackPointer, std::size_t limit) const
{
    constexpr std::uint64_t redZone = 128; // functions may use what is just below
    // When a stack has run out, its pointer is in no man's land below it.
    constexpr std::uint64_t farthest = 1024 * 1024;
    Mapping mapping;
    for (std::size_t position = 0; nextMapping(position, mapping);) {
        if (mapping.end <= stackPointer || !mapping.readable)
            continue;
        if (mapping.start > stackPointer && mapping.start - stackPointer > farthest)
            break;
        if (m_hidden > mapping.start && m_hidden < mapping.end)
            mapping.end = m_hidden;
        Stack stack;
        stack.start =
            stackPointer < mapping.start + redZone ? mapping.start : stackPointer - redZone;
        const std::uint64_t size = mapping.end > stack.start ? mapping.end - stack.start : 0;
        stack.size = size < limit ? static_cast<std::size_t>(size) : limit;
        return stack;
    }
    return {};
}

std::size_t CrashProcess::read(std::uint64_t address, void* buffer, std::size_t size)
{
    const std::uint64_t pageRest = pageSize - address % pageSize;
    if (size > pageRest)
        size = static_cast<std::size_t>(pageRest);
    const iovec local{buffer, size};
    const iovec remote{reinterpret_cast<void*>(address), size};
    ssize_t got = process_vm_readv(m_pid, &local, 1, &remote, 1, 0);
    if (got < 0 && errno != EFAULT) {
        // Not allowed: this process has the same memory, and a pipe refuses what is unreadable. Not
        // write(): a sanitizer would look at the memory by itself.
        got = syscall(SYS_write, m_pipe[1], address, size);
        if (got > 0)
            got = ::read(m_pipe[0], buffer, static_cast<std::size_t>(got));
    }
    return got > 0 ? static_cast<std::size_t>(got) : 0;
}

bool CrashProcess::readExactly(std::uint64_t address, void* buffer, std::size_t size)
{
    for (std::size_t done = 0; done < size;) {
        const std::size_t got =
            read(address + done, static_cast<char*>(buffer) + done, size - done);
        if (got == 0)
            return false;
        done += got;
    }
    return true;
}

#endif
