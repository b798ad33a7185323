// SPDX-License-Identifier: MIT
#ifndef _WIN32

#include "crash/crash_handler_system.h"

#if defined(__linux__) && defined(__x86_64__)

#include "crash/crash_handler_file.h"
#include "crash/crash_handler_process.h"

#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <ucontext.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <ctime>

using Minidump::Stream;

namespace
{

constexpr int crashSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP, SIGSYS};
constexpr int writeLimitMs = 5000;
constexpr std::size_t crashedStackLimit = 1024 * 1024;
constexpr std::size_t otherStackLimit = 64 * 1024;

// A handler may not take memory, so everything it needs is here from the start.
FixedText<4096> dumpFolder;
FixedText<256> dumpStem;
FixedText<256> systemVersion;
long utcOffset = 0;
unsigned processorCount = 1;
MinidumpWriter writer;
CrashProcess process;
CrashFile file;

struct Crash {
    int signal;
    const siginfo_t* info;
    const ucontext_t* context;
    pid_t process;
    pid_t thread;
};

enum class Threads { All, CrashedOnly };

void pauseMilliseconds(int count)
{
    const timespec time{0, count * 1000000L};
    nanosleep(&time, nullptr);
}

long long monotonicMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

void restoreDefault(int signal)
{
    struct sigaction action {
    };
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
}

Minidump::ContextAmd64 registersOf(const ucontext_t& from)
{
    const greg_t* general = from.uc_mcontext.gregs;
    const auto get = [general](int index) { return static_cast<std::uint64_t>(general[index]); };
    Minidump::ContextAmd64 context{};
    context.flags = Minidump::ContextAmd64::filled;
    const std::uint64_t segments = get(REG_CSGSFS);
    context.cs = static_cast<std::uint16_t>(segments);
    context.gs = static_cast<std::uint16_t>(segments >> 16);
    context.fs = static_cast<std::uint16_t>(segments >> 32);
    context.ss = static_cast<std::uint16_t>(segments >> 48);
    context.eflags = static_cast<std::uint32_t>(get(REG_EFL));
    context.rax = get(REG_RAX);
    context.rcx = get(REG_RCX);
    context.rdx = get(REG_RDX);
    context.rbx = get(REG_RBX);
    context.rsp = get(REG_RSP);
    context.rbp = get(REG_RBP);
    context.rsi = get(REG_RSI);
    context.rdi = get(REG_RDI);
    context.r8 = get(REG_R8);
    context.r9 = get(REG_R9);
    context.r10 = get(REG_R10);
    context.r11 = get(REG_R11);
    context.r12 = get(REG_R12);
    context.r13 = get(REG_R13);
    context.r14 = get(REG_R14);
    context.r15 = get(REG_R15);
    context.rip = get(REG_RIP);
    if (const _libc_fpstate* floating = from.uc_mcontext.fpregs) {
        static_assert(sizeof *floating == sizeof context.floatingPoint, "");
        std::memcpy(context.floatingPoint, floating, sizeof *floating);
        context.mxcsr = floating->mxcsr;
    }
    return context;
}

FixedText<32> threadName(pid_t process, pid_t thread)
{
    FixedText<64> path;
    path.add("/proc/").add(static_cast<unsigned>(process)).add("/task/");
    path.add(static_cast<unsigned>(thread)).add("/comm");
    char name[32];
    std::size_t length = readWholeFile(path.text(), name, sizeof name);
    while (length > 0 && name[length - 1] == '\n')
        --length;
    FixedText<32> text;
    text.add(name, length);
    return text;
}

Minidump::Location addThread(pid_t pid, pid_t thread, const Minidump::ContextAmd64& context,
                             std::size_t stackLimit)
{
    const CrashProcess::Stack stack = process.stackAt(context.rsp, stackLimit);
    return writer.addThread(static_cast<std::uint32_t>(thread), threadName(pid, thread).text(),
                            context, stack.start, stack.size);
}

void addThreads(const Crash& crash, Threads threads)
{
    const std::size_t others = threads == Threads::All ? process.stopThreads(crash.thread) : 0;
    const Minidump::ContextAmd64 context = registersOf(*crash.context);
    Minidump::Exception exception{};
    exception.context = addThread(crash.process, crash.thread, context, crashedStackLimit);
    exception.threadId = static_cast<std::uint32_t>(crash.thread);
    exception.code = static_cast<std::uint32_t>(crash.signal);
    exception.flags = static_cast<std::uint32_t>(crash.info->si_code);
    // A signal that somebody sent has no address.
    exception.address = crash.info->si_code > 0
                            ? reinterpret_cast<std::uint64_t>(crash.info->si_addr)
                            : context.rip;
    writer.addException(exception);

    constexpr std::uint64_t around = 128;
    writer.addMemory(context.rip - around, 2 * around);

    Minidump::ContextAmd64 registers;
    for (std::size_t n = 0; n < others; ++n) {
        if (process.registers(n, registers))
            addThread(crash.process, process.thread(n), registers, otherStackLimit);
    }
}

void addModules()
{
    static CrashProcess::Module module;
    for (std::size_t position = 0; process.nextModule(position, module);) {
        writer.addModule(module.path.text(), module.base,
                         static_cast<std::uint32_t>(module.end - module.base), module.buildId,
                         module.buildIdSize);
    }
}

bool addFile(Stream type, const char* path)
{
    static char text[32 * 1024];
    const std::size_t size = readWholeFile(path, text, sizeof text);
    if (size > 0)
        writer.addText(type, text, size);
    return size > 0;
}

/// What tells the system and the process apart. Not the environment: it may hold passwords.
void addTexts(pid_t pid)
{
    FixedText<64> folder;
    folder.add("/proc/").add(static_cast<unsigned>(pid));
    const std::size_t folderLength = folder.length();
    addFile(Stream::LinuxStatus, folder.add("/status").text());
    folder.cut(folderLength);
    addFile(Stream::LinuxCommandLine, folder.add("/cmdline").text());
    if (!addFile(Stream::LinuxRelease, "/etc/lsb-release"))
        addFile(Stream::LinuxRelease, "/etc/os-release");
    writer.addText(Stream::LinuxMaps, process.maps(), process.mapsSize());
    writer.addText(Stream::Comment, dumpStem.text(), dumpStem.length() + 1);
}

bool writeDump(const Crash& crash, Threads threads)
{
    process.look(crash.process);
    writer.begin(file, process, static_cast<std::uint32_t>(time(nullptr)));
    writer.addSystemInfo(systemVersion.text(), processorCount);
    addThreads(crash, threads);
    addModules();
    addTexts(crash.process);
    return writer.end();
}

enum class Outcome { Written, Failed, TimedOut };

[[noreturn]] void runWriter(const Crash& crash)
{
    for (const int signal : crashSignals)
        restoreDefault(signal);
    restoreDefault(SIGALRM);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // Should nobody be left to end this process. Later than the parent would: that one must see the
    // difference between a failure and a hang.
    alarm(3 * writeLimitMs / 1000);
    _exit(writeDump(crash, Threads::All) ? 0 : 1);
}

/// A child process writes, because only from outside can the other threads be stopped and read, and
/// because a fault while writing then costs only the child.
Outcome writeInChild(const Crash& crash)
{
    prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0);
    // Not fork(): it takes locks that the crashed code may hold. No signal tells of its end.
    const auto child = static_cast<pid_t>(syscall(SYS_clone, 0, nullptr, nullptr, nullptr, 0));
    if (child == 0)
        runWriter(crash);
    if (child < 0)
        return Outcome::Failed;
    constexpr int stepMs = 2;
    int status = 0;
    for (const long long end = monotonicMs() + writeLimitMs; monotonicMs() < end;) {
        const pid_t ended = waitpid(child, &status, __WALL | WNOHANG);
        if (ended != 0) {
            const bool good = ended == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
            return good ? Outcome::Written : Outcome::Failed;
        }
        pauseMilliseconds(stepMs);
    }
    kill(child, SIGKILL);
    return Outcome::TimedOut;
}

void saveDump(const Crash& crash)
{
    if (!file.open(dumpFolder.text(), dumpStem.text(), time(nullptr) + utcOffset))
        return;
    signal(SIGXFSZ, SIG_IGN); // no space is a failure like others, not one more signal
    Outcome outcome = writeInChild(crash);
    if (outcome == Outcome::Failed && file.clear() && writeDump(crash, Threads::CrashedOnly))
        outcome = Outcome::Written;
    if (outcome != Outcome::Written || !file.keep())
        file.discard();
}

void handleCrash(int signal, siginfo_t* info, void* context)
{
    static std::atomic<pid_t> writingThread{0};
    static std::atomic<bool> finished{false};
    const auto self = static_cast<pid_t>(syscall(SYS_gettid));
    pid_t first = 0;
    if (writingThread.compare_exchange_strong(first, self)) {
        saveDump({signal, info, static_cast<const ucontext_t*>(context), getpid(), self});
        finished = true;
    } else if (first != self) {
        // Ending the process now would end the other thread's writing.
        constexpr int stepMs = 10;
        for (const long long end = monotonicMs() + 2 * writeLimitMs;
             !finished && monotonicMs() < end;)
            pauseMilliseconds(stepMs);
    }
    // As if there were no handler: the exit status tells the signal, and the system may save a
    // core.
    restoreDefault(signal);
    syscall(SYS_tgkill, getpid(), self, signal);
}

/// A stack for handlers, with a page below that nothing may touch.
class SignalStack
{
public:
    SignalStack()
    {
        void* memory = mmap(nullptr, guardSize + size, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            return;
        m_memory = static_cast<char*>(memory);
        mprotect(m_memory, guardSize, PROT_NONE);
        stack_t stack{};
        stack.ss_sp = m_memory + guardSize;
        stack.ss_size = size;
        sigaltstack(&stack, nullptr);
    }

    ~SignalStack()
    {
        if (!m_memory)
            return;
        stack_t stack{};
        stack.ss_flags = SS_DISABLE;
        sigaltstack(&stack, nullptr);
        munmap(m_memory, guardSize + size);
    }

    SignalStack(const SignalStack&) = delete;
    SignalStack& operator=(const SignalStack&) = delete;

private:
    static constexpr std::size_t guardSize = 4096;
    static constexpr std::size_t size = 128 * 1024;
    char* m_memory = nullptr;
};

} // namespace

namespace CrashHandlerSystem
{

bool catchCrashes(const Setup& setup)
{
    dumpFolder = {};
    dumpFolder.add(setup.folder.c_str());
    dumpStem = {};
    dumpStem.add(setup.program.c_str());
    if (dumpFolder.isFull() || dumpStem.isFull())
        return false;
    utcOffset = setup.utcOffset;
    const long processors = sysconf(_SC_NPROCESSORS_ONLN);
    processorCount = processors > 0 ? static_cast<unsigned>(processors) : 1;
    utsname system{};
    systemVersion = {};
    if (uname(&system) == 0)
        systemVersion.add(system.sysname).add(" ").add(system.release).add(" ").add(system.version);
    // The system puts these bytes just below the texts of arguments and environment.
    process.hideFrom(getauxval(AT_RANDOM));

    coverThread();
    struct sigaction action {
    };
    action.sa_sigaction = handleCrash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    // A fault inside the handler then ends the process at once.
    sigemptyset(&action.sa_mask);
    for (const int signal : crashSignals)
        sigaddset(&action.sa_mask, signal);
    bool all = true;
    for (const int signal : crashSignals)
        all = sigaction(signal, &action, nullptr) == 0 && all;
    return all;
}

void coverThread()
{
    thread_local SignalStack stack;
}

} // namespace CrashHandlerSystem

#else

namespace CrashHandlerSystem
{

bool catchCrashes(const Setup&)
{
    return false;
}

void coverThread() {}

} // namespace CrashHandlerSystem

#endif
#endif
