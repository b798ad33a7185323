// SPDX-License-Identifier: MIT
#include "common/platform.h"

#include <QtGlobal>

#ifdef Q_OS_WIN

#include <QDir>
#include <QProcess>

#include <atomic>

#include <windows.h>

namespace
{

std::function<void()>& callback()
{
    static std::function<void()> asked;
    return asked;
}

/// On a thread of the system's own; it ends the process as soon as this returns, in most cases.
BOOL WINAPI hear(DWORD)
{
    static std::atomic<bool> isHeard{false};
    if (!isHeard.exchange(true))
        callback()();
    Sleep(INFINITE);
    return TRUE;
}

} // namespace

namespace Platform
{

void secureStreams()
{
    // A program of the window kind has none.
}

void watchEndSignals(std::function<void()> asked)
{
    callback() = std::move(asked);
    SetConsoleCtrlHandler(hear, TRUE);
}

QProcess* newTool(QObject* parent)
{
    return new QProcess(parent);
}

QProcess* newProcess()
{
    return new QProcess;
}

QProcess* newModestProcess()
{
    QProcess* process = newProcess();
    process->setCreateProcessArgumentsModifier([](QProcess::CreateProcessArguments* arguments) {
        arguments->flags |= BELOW_NORMAL_PRIORITY_CLASS;
    });
    return process;
}

ChildInput curlInput(const QStringList& arguments)
{
    ChildInput input{arguments, QByteArray()};
    const int option = arguments.indexOf(QStringLiteral("-d"));
    if (option < 0 || option + 1 >= arguments.size())
        return input;
    const QString data = arguments.at(option + 1);
    // A program of the older kind sees its arguments in the local code page, where letters of other
    // alphabets are lost. Its standard input passes bytes as they are.
    if (data.toUtf8() != data.toLatin1()) {
        input.arguments[option] = QStringLiteral("--data-binary");
        input.arguments[option + 1] = QStringLiteral("@-");
        input.standardInput = data.toUtf8();
    }
    return input;
}

void useUtf8ForChildProcesses()
{
    // Windows hands command lines over as UTF-16; there is nothing to choose.
}

bool revealFile(const QString& path)
{
    QProcess explorer;
    explorer.setProgram(QStringLiteral("explorer.exe"));
    // It parses its command line itself: the comma belongs to the option, the quotes to the path.
    explorer.setNativeArguments(QStringLiteral("/select,\"") + QDir::toNativeSeparators(path) +
                                QLatin1Char('"'));
    return explorer.startDetached();
}

bool startDetached(const QString& program, const QStringList& arguments, const QString& folder)
{
    // In quotes, so that no part of a path with blanks is tried as a program of its own.
    return QProcess::startDetached(QLatin1Char('"') + program + QLatin1Char('"'), arguments,
                                   folder);
}

Sandbox browserSandbox()
{
    return Sandbox::Ready;
}

} // namespace Platform

#endif
