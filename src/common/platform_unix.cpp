// SPDX-License-Identifier: MIT
#include "common/platform.h"

#include <QtGlobal>

#ifndef Q_OS_WIN

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTextCodec>

#include <cerrno>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef Q_OS_LINUX
#include <sched.h>
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

QProcess* newModestProcess()
{
    auto* process = new QProcess;
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
    return {arguments, QByteArray()};
}

void useUtf8ForChildProcesses()
{
    // Under the plain C locale Qt would turn every non-Latin letter of a command line into "?".
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

bool revealFile(const QString& path)
{
    return QProcess::startDetached(QStringLiteral("xdg-open"), {QFileInfo(path).absolutePath()});
}

bool startDetached(const QString& program, const QStringList& arguments, const QString& folder)
{
    return QProcess::startDetached(program, arguments, folder);
}

Sandbox browserSandbox()
{
    if (sandboxIsOff())
        return Sandbox::Ready;
    if (geteuid() == 0)
        return Sandbox::RefusesRoot;
    return mayHaveNamespaces() ? Sandbox::Ready : Sandbox::Unavailable;
}

} // namespace Platform

#endif
