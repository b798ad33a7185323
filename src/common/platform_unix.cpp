// SPDX-License-Identifier: MIT
#include "common/platform.h"

#include <QtGlobal>

#ifndef Q_OS_WIN

#include "crash/crash_handler.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTextCodec>

#include <cerrno>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef Q_OS_LINUX
#include <sched.h>
#include <sys/prctl.h>
#endif

namespace
{

constexpr int lowPriority = 10;

bool sandboxIsOff()
{
    const QString off = QStringLiteral("--no-sandbox");
    return qEnvironmentVariableIsSet("QTWEBENGINE_DISABLE_SANDBOX") ||
           qEnvironmentVariable("QTWEBENGINE_CHROMIUM_FLAGS").contains(off) ||
           QCoreApplication::arguments().contains(off);
}

class ChildProcess : public QProcess
{
public:
    explicit ChildProcess(QObject* parent, bool hearsSignals)
        : QProcess(parent), m_hearsSignals(hearsSignals)
    {
    }

protected:
    // In the child, which shares this program's memory: system calls only.
    void setupChildProcess() override
    {
        if (!m_hearsSignals) {
            for (const int signal : {SIGTERM, SIGINT, SIGHUP})
                ::signal(signal, SIG_IGN);
        }
#ifdef Q_OS_LINUX
        prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    }

private:
    const bool m_hearsSignals;
};

QtMessageHandler usualHandler = nullptr;

/// Who started the program may read what it says, or not: it waits for nobody.
void sayUnlessItBlocks(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    pollfd errors{STDERR_FILENO, POLLOUT, 0};
    if (poll(&errors, 1, 0) == 1 && (errors.revents & POLLOUT))
        usualHandler(type, context, text);
}

int bell[2] = {-1, -1};
pid_t program = 0;

void ring(int)
{
    // A child that is no other program yet has this handler, too.
    if (getpid() != program)
        return;
    const int before = errno;
    const char any = 0;
    const ssize_t written = write(bell[1], &any, 1);
    (void)written;
    errno = before;
}

void catchSignal(int signal)
{
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_handler = ring;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

/// Tries in a child, which is gone at once, what the sandbox will do.
bool mayHaveNamespaces()
{
#ifdef Q_OS_LINUX
    const pid_t child = fork();
    if (child < 0)
        return false;
    if (child == 0)
        _exit(unshare(CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET) == 0 ? 0 : 1);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
#else
    return true;
#endif
}

} // namespace

namespace Platform
{

void secureStreams()
{
    std::signal(SIGPIPE, SIG_IGN);
    usualHandler = qInstallMessageHandler(sayUnlessItBlocks);
    // The next file or socket that is opened would get the number of one that is closed.
    for (int stream = 0; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF && open("/dev/null", O_RDWR) != stream)
            return;
    }
}

void watchEndSignals(std::function<void()> asked)
{
    if (bell[0] >= 0 || pipe(bell) != 0)
        return;
    for (const int end : bell)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    program = getpid();
    // Not the window's thread: it may be what hangs.
    std::thread([asked = std::move(asked)] {
        CrashHandler::coverThread();
        char any = 0;
        while (read(bell[0], &any, 1) < 0 && errno == EINTR) {
        }
        asked();
    }).detach();
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        catchSignal(signal);
}

QProcess* newTool(QObject* parent)
{
    return new ChildProcess(parent, true);
}

QProcess* newProcess()
{
    return new ChildProcess(nullptr, false);
}

void askToEnd(QProcess* tool)
{
    tool->terminate();
}

QStringList programFolders(const QStringList& searched)
{
    // Debian and others keep fping where only root's search path looks.
    return searched + QStringList{QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")};
}

QStringList arguments(int argc, char* argv[])
{
    QStringList texts;
    for (int i = 0; i < argc; ++i)
        texts << QString::fromLocal8Bit(argv[i]);
    return texts;
}

QProcess* newModestProcess()
{
    QProcess* process = newProcess();
    // Only now: a child of low priority would share this program's memory, page by page copied, for
    // as long as it waits for its turn to become another program.
    QObject::connect(process, &QProcess::started, process, [process] {
        // Failing to is no reason to leave the work undone.
        setpriority(PRIO_PROCESS, id_t(process->processId()), lowPriority);
    });
    return process;
}

ChildInput curlInput(const QStringList& arguments)
{
    ChildInput input;
    input.arguments = arguments;
    return input;
}

void useUtf8ForChildProcesses()
{
    // Under the plain C locale Qt would turn every non-Latin letter of a command line into "?".
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

bool revealFile(const QString& path)
{
    const QString opener = programPath(QStringLiteral("xdg-open"));
    return !opener.isEmpty() && QProcess::startDetached(opener, {QFileInfo(path).absolutePath()});
}

bool startDetached(const QString& program, const QStringList& arguments, const QString& folder)
{
    return QProcess::startDetached(program, arguments, folder);
}

QStringList serverNames(const QString& folder, const QString& name)
{
    return {folder + QStringLiteral("/instance"),
            QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + QLatin1Char('/') +
                name};
}

bool scalesRowsWrongly()
{
    return false;
}

void letOthersToFront()
{
    // The window manager decides.
}

Sandbox browserSandbox()
{
    if (sandboxIsOff())
        return Sandbox::Ready;
    if (geteuid() == 0)
        return Sandbox::RefusesRoot;
    return mayHaveNamespaces() ? Sandbox::Ready : Sandbox::Unavailable;
}

qint64 residentBytes(qint64 process)
{
    QFile pages(QStringLiteral("/proc/%1/statm").arg(process));
    if (!pages.open(QIODevice::ReadOnly))
        return 0;
    return pages.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

} // namespace Platform

#endif
