// SPDX-License-Identifier: MIT
#ifdef _WIN32

#include "crash/crash_handler_system.h"

#include <windows.h>
// Needs what windows.h declares.
#include <dbghelp.h>

#include <csignal>
#include <cstdlib>
#include <cwchar>

namespace
{

using MiniDumpWriter = decltype(&MiniDumpWriteDump);

constexpr DWORD writeLimitMs = 10000;
constexpr std::size_t longestPath = 1024;

// Nothing is taken from the heap after a crash: it may be what is broken.
wchar_t dumpFolder[longestPath];
wchar_t dumpStem[longestPath];
MiniDumpWriter writeMiniDump = nullptr;
HANDLE writerWanted = nullptr;
HANDLE writerDone = nullptr;
MINIDUMP_EXCEPTION_INFORMATION crash{};
volatile LONG crashes = 0;

bool toWide(const std::string& text, wchar_t (&wide)[longestPath])
{
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.c_str(), -1, wide, longestPath) >
           0;
}

bool append(wchar_t (&path)[longestPath], const wchar_t* text)
{
    const std::size_t length = std::wcslen(path);
    const std::size_t more = std::wcslen(text);
    if (length + more >= longestPath)
        return false;
    std::wmemcpy(path + length, text, more + 1);
    return true;
}

void appendNumber(wchar_t (&path)[longestPath], unsigned number, int width)
{
    wchar_t digits[12];
    wchar_t* at = digits + 11;
    *at = L'\0';
    for (; (number > 0 || width > 0) && at > digits; number /= 10, --width)
        *--at = static_cast<wchar_t>(L'0' + number % 10);
    append(path, at);
}

void appendTime(wchar_t (&path)[longestPath])
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    append(path, L"-");
    appendNumber(path, now.wYear, 4);
    appendNumber(path, now.wMonth, 2);
    appendNumber(path, now.wDay, 2);
    append(path, L"-");
    appendNumber(path, now.wHour, 2);
    appendNumber(path, now.wMinute, 2);
    appendNumber(path, now.wSecond, 2);
}

bool writeDump(const wchar_t* path)
{
    HANDLE file =
        CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const auto content =
        static_cast<MINIDUMP_TYPE>(MiniDumpWithThreadInfo | MiniDumpWithUnloadedModules |
                                   MiniDumpWithIndirectlyReferencedMemory);
    const bool written = writeMiniDump(GetCurrentProcess(), GetCurrentProcessId(), file, content,
                                       &crash, nullptr, nullptr);
    CloseHandle(file);
    return written;
}

/// Under a name of its own until it is whole; it never takes the place of another file.
void saveDump()
{
    static wchar_t base[longestPath];
    static wchar_t path[longestPath];
    static wchar_t part[longestPath];
    CreateDirectoryW(dumpFolder, nullptr);
    append(base, dumpFolder);
    append(base, dumpStem);
    appendTime(base);
    constexpr unsigned mostAlike = 99; // crashes in one second
    for (unsigned n = 1; n <= mostAlike; ++n) {
        path[0] = part[0] = L'\0';
        append(path, base);
        if (n > 1) {
            append(path, L"-");
            appendNumber(path, n, 1);
        }
        append(path, L".dmp");
        append(part, path);
        if (!append(part, L".part"))
            return;
        if (GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES ||
            GetFileAttributesW(part) != INVALID_FILE_ATTRIBUTES)
            continue;
        if (!writeDump(part) || !MoveFileExW(part, path, 0))
            DeleteFileW(part);
        return;
    }
}

/// A thread of its own, made before anything breaks: the crashed one may have no stack left.
DWORD WINAPI runWriter(void*)
{
    if (WaitForSingleObject(writerWanted, INFINITE) == WAIT_OBJECT_0)
        saveDump();
    SetEvent(writerDone);
    return 0;
}

/// The first crash is saved; what crashes meanwhile waits for that, within limits.
void handleCrash(EXCEPTION_POINTERS* pointers)
{
    if (InterlockedIncrement(&crashes) == 1) {
        crash.ThreadId = GetCurrentThreadId();
        crash.ExceptionPointers = pointers;
        crash.ClientPointers = FALSE;
        SetEvent(writerWanted);
    }
    WaitForSingleObject(writerDone, writeLimitMs);
}

LONG WINAPI handleException(EXCEPTION_POINTERS* pointers)
{
    handleCrash(pointers);
    // As if there were no handler: the exit code tells what happened.
    return EXCEPTION_CONTINUE_SEARCH;
}

/// For ends that come without an exception of the system.
[[noreturn]] void endWith(DWORD code)
{
    CONTEXT context{};
    RtlCaptureContext(&context);
    EXCEPTION_RECORD record{};
    record.ExceptionCode = code;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    record.ExceptionAddress = reinterpret_cast<void*>(&endWith);
    EXCEPTION_POINTERS pointers{&record, &context};
    handleCrash(&pointers);
    TerminateProcess(GetCurrentProcess(), code);
    std::abort();
}

constexpr DWORD fatalExit = 0x40000015;
constexpr DWORD invalidParameter = 0xc000000d;
constexpr DWORD pureCall = 0xc0000025;

void handleAbort(int)
{
    endWith(fatalExit);
}

void handleInvalidParameter(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, uintptr_t)
{
    endWith(invalidParameter);
}

void handlePureCall()
{
    endWith(pureCall);
}

bool startWriter()
{
    // The system's own, whatever lies in the program's folder.
    HMODULE library = LoadLibraryExW(L"dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (!library)
        return false;
    writeMiniDump = reinterpret_cast<MiniDumpWriter>(
        reinterpret_cast<void*>(GetProcAddress(library, "MiniDumpWriteDump")));
    writerWanted = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    writerDone = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (!writeMiniDump || !writerWanted || !writerDone)
        return false;
    HANDLE thread = CreateThread(nullptr, 0, runWriter, nullptr, 0, nullptr);
    if (!thread)
        return false;
    CloseHandle(thread);
    return true;
}

} // namespace

namespace CrashHandlerSystem
{

bool catchCrashes(const Setup& setup)
{
    if (!toWide(setup.folder, dumpFolder) || !toWide(setup.program, dumpStem))
        return false;
    if (writeMiniDump)
        return true;
    if (!startWriter())
        return false;
    coverThread();
    SetUnhandledExceptionFilter(handleException);
    std::signal(SIGABRT, handleAbort);
    _set_invalid_parameter_handler(handleInvalidParameter);
    _set_purecall_handler(handlePureCall);
    return true;
}

void coverThread()
{
    // Left over for the handler when the rest has run out.
    ULONG reserve = 64 * 1024;
    SetThreadStackGuarantee(&reserve);
}

} // namespace CrashHandlerSystem

#endif
