// SPDX-License-Identifier: MIT
// crash_victim FOLDER WAY [HINDRANCE...]: installs the crash handler for the folder, then crashes
// in this way.
#include "common/platform.h"
#include "crash/crash_handler.h"

#include <QCoreApplication>
#include <QHash>
#include <QSemaphore>
#include <QThread>

#include <cstdlib>
#include <cstring>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <memory>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

// Outside of any namespace and not inlined: their names are looked for in back traces. A sanitizer
// would stop them before they crash.
#define VICTIM __attribute__((noinline, used, no_sanitize("undefined", "address")))

volatile int* volatile nowhere = nullptr;

VICTIM void writeToNowhere()
{
    *nowhere = 1;
}

/// Known values in registers, then a write to address 0x18.
VICTIM void writeWithKnownRegisters()
{
    asm volatile("movabs $0x1122334455667788, %%r12\n"
                 "movabs $0x99aabbccddeeff01, %%r13\n"
                 "mov $0x2a, %%esi\n"
                 "mov $0x4048f5c3, %%eax\n"
                 "movd %%eax, %%xmm5\n"
                 "movl $1, 0x18\n" ::
                     : "r12", "r13", "rsi", "rax", "xmm5", "memory");
}

VICTIM int divideBy(volatile int divisor)
{
    return 1000 / divisor;
}

VICTIM int runOutOfStack(int depth)
{
    volatile char room[512];
    std::memset(const_cast<char*>(room), depth, sizeof room);
    return depth < 0 ? 0 : runOutOfStack(depth + 1) + room[0];
}

VICTIM void giveUp()
{
    std::abort();
}

/// The C library gives up inside its own locks.
VICTIM void freeTwice()
{
    void* volatile memory = std::malloc(5000);
    std::free(memory);
    std::free(memory);
}

VICTIM void throwUncaught()
{
    throw std::runtime_error("nobody catches this");
}

VICTIM void jumpToNowhere()
{
    reinterpret_cast<void (*)()>(0x10)();
}

QSemaphore sleeping;

VICTIM void sleepForever()
{
    sleeping.release();
    for (;;)
        pause();
}

namespace
{

enum class Refusal : unsigned {
    Error = SECCOMP_RET_ERRNO | EPERM, // as some containers do
    Fault = SECCOMP_RET_TRAP,
    Hang = SECCOMP_RET_USER_NOTIF, // nobody ever answers
};

/// How the system treats this call from now on.
void refuse(unsigned systemCall, Refusal refusal = Refusal::Error)
{
    sock_filter rules[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, 0), // the call's number
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, systemCall, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, static_cast<unsigned>(refusal)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{sizeof rules / sizeof *rules, rules};
    const unsigned flags = refusal == Refusal::Hang ? SECCOMP_FILTER_FLAG_NEW_LISTENER : 0;
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, flags, &program) < 0)
        qFatal("cannot refuse a system call");
}

void refuseLongFiles()
{
    const rlimit limit{16 * 1024, 16 * 1024};
    setrlimit(RLIMIT_FSIZE, &limit);
}

void inThread(void (*work)(), const char* name)
{
    QThread* thread = QThread::create(work);
    thread->setObjectName(QString::fromLatin1(name));
    thread->start();
    thread->wait();
}

void crashAllAtOnce()
{
    std::vector<QThread*> threads;
    for (int n = 0; n < 8; ++n) {
        threads.push_back(QThread::create(writeToNowhere));
        threads.back()->start();
    }
    for (QThread* thread : threads)
        thread->wait();
}

void overflowInThread()
{
    CrashHandler::coverThread();
    runOutOfStack(0);
}

using Deed = void (*)();

const QHash<QString, Deed> ways{
    {"null", writeToNowhere},
    {"registers", writeWithKnownRegisters},
    {"divide", [] { divideBy(0); }},
    {"overflow", [] { runOutOfStack(0); }},
    {"abort", giveUp},
    {"heap", freeTwice},
    {"exception", throwUncaught},
    {"fatal", [] { qFatal("end of the road"); }},
    {"jump", jumpToNowhere},
    {"thread", [] { inThread(writeToNowhere, "worker"); }},
    {"thread-overflow", [] { inThread(overflowInThread, "worker"); }},
    {"all-at-once", crashAllAtOnce},
};

const QHash<QString, Deed> hindrances{
    {"no-trace", [] { refuse(SYS_ptrace); }},
    {"no-reading", [] { refuse(SYS_process_vm_readv); }},
    {"no-fork", [] { refuse(SYS_clone); }},
    {"writer-faults", [] { refuse(SYS_getdents64, Refusal::Fault); }},
    {"writer-hangs", [] { refuse(SYS_getdents64, Refusal::Hang); }},
    {"handler-faults", [] { refuse(SYS_pipe2, Refusal::Fault); }},
    {"no-space", refuseLongFiles},
};

} // namespace

int main(int argc, char* argv[])
{
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    Platform::useUtf8ForChildProcesses();
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 3)
        return 2;
    CrashHandler::instance().setDumpFolder(arguments.at(1));
    if (!CrashHandler::instance().install("1.0.0.10", CrashHandler::Sanitizers::Override))
        return 3;
    std::unique_ptr<QThread> bystander(QThread::create(sleepForever));
    bystander->setObjectName("bystander");
    bystander->start();
    sleeping.acquire();
    const auto nothing = [] {};
    for (const QString& more : arguments.mid(3))
        hindrances.value(more, nothing)();
    ways.value(arguments.at(2), nothing)();
    return 4;
}
