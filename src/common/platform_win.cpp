// SPDX-License-Identifier: MIT
#include "common/platform.h"

#include <QtGlobal>

#ifdef Q_OS_WIN

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <array>
#include <atomic>

#include <windows.h>
// Needs the one before.
#include <psapi.h>

#include <shellapi.h>

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

// A program of the older kind, as curl is, sees its arguments in the local code page, where letters
// of other alphabets are lost. Its standard input passes bytes as they are, and the folder in which
// it is started may have any name.

bool isInCodePage(const QString& text)
{
    return QString::fromLocal8Bit(text.toLocal8Bit()) == text;
}

/// The place of the value of `option`, below 0 when there is none.
int placeOfValue(const QStringList& arguments, const QString& option)
{
    const int place = arguments.indexOf(option);
    return place < 0 || place + 1 >= arguments.size() ? -1 : place + 1;
}

void passData(Platform::ChildInput* input)
{
    const int place = placeOfValue(input->arguments, QStringLiteral("-d"));
    const QString data = input->arguments.value(place);
    if (place < 0 || data.toUtf8() == data.toLatin1())
        return;
    input->arguments[place - 1] = QStringLiteral("--data-binary");
    input->arguments[place] = QStringLiteral("@-");
    input->standardInput = data.toUtf8();
}

void passUpload(Platform::ChildInput* input)
{
    const int place = placeOfValue(input->arguments, QStringLiteral("-F"));
    const QString form = input->arguments.value(place);
    const int path = form.indexOf(QLatin1String("=@")) + 2;
    if (place < 0 || path < 2 || isInCodePage(form))
        return;
    const QFileInfo file(form.mid(path));
    if (isInCodePage(file.fileName())) {
        input->folder = file.absolutePath();
        input->arguments[place] = form.left(path) + file.fileName();
    } else {
        // The box goes by what is in a package, not by what it was called here.
        input->standardInputFile = file.absoluteFilePath();
        input->arguments[place] = form.left(path) + QStringLiteral("-;filename=package.dat");
    }
}

void passOutput(Platform::ChildInput* input)
{
    const int place = placeOfValue(input->arguments, QStringLiteral("-o"));
    const QFileInfo file(input->arguments.value(place));
    if (place < 0 || isInCodePage(file.filePath()))
        return;
    if (isInCodePage(file.fileName())) {
        input->folder = file.absolutePath();
        input->arguments[place] = file.fileName();
    } else {
        input->standardOutputFile = file.absoluteFilePath();
        input->appends = input->arguments.contains(QStringLiteral("-C"));
        input->arguments[place] = QStringLiteral("-");
    }
}

/// Closed by the system when the program ends, however that ends, and with it all that is in it.
HANDLE ownJob()
{
    static const HANDLE job = [] {
        const HANDLE made = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        return made;
    }();
    return job;
}

void takeAlong(qint64 child)
{
    const HANDLE handle =
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(child));
    if (!handle)
        return;
    AssignProcessToJobObject(ownJob(), handle);
    CloseHandle(handle);
}

QProcess* newChild(QObject* parent)
{
    auto* const process = new QProcess(parent);
    QObject::connect(process, &QProcess::started, process,
                     [process] { takeAlong(process->processId()); });
    return process;
}

using FolderOf = UINT(WINAPI*)(wchar_t*, UINT);

/// With "/" as separator and none at the end.
QString systemFolder(FolderOf folderOf)
{
    std::array<wchar_t, MAX_PATH + 1> path{};
    const UINT length = folderOf(path.data(), UINT(path.size()));
    return length < path.size() ? QDir::cleanPath(QString::fromWCharArray(path.data(), int(length)))
                                : QString();
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
    return newChild(parent);
}

QProcess* newProcess()
{
    return newChild(nullptr);
}

void askToEnd(QProcess* tool)
{
    // A request reaches windows only, which a tool has none of.
    tool->kill();
}

QStringList programFolders(const QStringList& searched)
{
    return QStringList{QCoreApplication::applicationDirPath(), systemFolder(&GetSystemDirectoryW)} +
           searched;
}

QStringList arguments(int, char**)
{
    QStringList texts;
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 0; words && i < count; ++i)
        texts << QString::fromWCharArray(words[i]);
    LocalFree(words);
    return texts;
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
    ChildInput input;
    input.arguments = arguments;
    passData(&input);
    passUpload(&input);
    passOutput(&input);
    return input;
}

void useUtf8ForChildProcesses()
{
    // Windows hands command lines over as UTF-16; there is nothing to choose.
}

bool revealFile(const QString& path)
{
    QProcess explorer;
    explorer.setProgram(systemFolder(&GetSystemWindowsDirectoryW) +
                        QStringLiteral("/explorer.exe"));
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

QStringList serverNames(const QString&, const QString& name)
{
    return {name};
}

bool scalesRowsWrongly()
{
    return true;
}

void letOthersToFront()
{
    AllowSetForegroundWindow(ASFW_ANY);
}

Sandbox browserSandbox()
{
    return Sandbox::Ready;
}

qint64 residentBytes(qint64 process)
{
    const HANDLE handle =
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(process));
    if (!handle)
        return 0;
    PROCESS_MEMORY_COUNTERS counters{};
    const bool isKnown = K32GetProcessMemoryInfo(handle, &counters, sizeof counters);
    CloseHandle(handle);
    return isKnown ? qint64(counters.WorkingSetSize) : 0;
}

} // namespace Platform

#endif
