// SPDX-License-Identifier: MIT
//
// NAME.exe ARGUMENT...: under Wine, the program NAME of the system that Wine runs on, or the shell
// script NAME.sh that lies beside it. Wine starts such a program, but gives it no pipe and does not
// wait for it: its output comes by files, and its end by one more. It ends when this one does.
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <windows.h>
// It needs the one before.
#include <shellapi.h>

namespace
{

constexpr auto look = std::chrono::milliseconds(10);
/// What a shell says of a program that a signal has ended begins behind it.
constexpr int signalled = 128;
/// An exit code that tells of a crash, to Qt too.
constexpr UINT crashed = 0xf291;

/// Runs its arguments behind the first, which is the folder with the files `out`, `err` and, in the
/// end, `code`; until then only as long as there is the file `run`, and for ten minutes at most.
const wchar_t* const runner =
    L"d=$1; shift; exec </dev/null >$d/out 2>$d/err; export PATH=/usr/local/bin:/usr/bin:/bin\n"
    L"setsid \"$@\" & p=$!\n"
    L"(n=0; while [ -e $d/run ] && [ $n -lt 12000 ]; do n=$((n+1)); sleep 0.05; done\n"
    L"kill -9 -$p) >/dev/null 2>&1 & w=$!\n"
    L"wait $p; c=$?; kill $w; [ -e $d/run ] || exec rm -rf $d\n"
    L"echo $c >$d/code.part; mv $d/code.part $d/code";

[[noreturn]] void fail(const char* what)
{
    std::fprintf(stderr, "%s: error %lu\n", what, GetLastError());
    std::exit(signalled - 1);
}

/// The name that the system below Wine has for a file.
std::wstring hostPath(const std::wstring& path)
{
    using Translate = char*(CDECL*)(LPCWSTR);
    const auto translate = reinterpret_cast<Translate>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    if (!translate)
        fail("this is not Wine");
    char* const found = translate(path.c_str());
    if (!found)
        fail("a path has no name on the host");
    wchar_t wide[4 * MAX_PATH];
    if (MultiByteToWideChar(CP_UTF8, 0, found, -1, wide, 4 * MAX_PATH) == 0)
        fail("a path is too long");
    HeapFree(GetProcessHeap(), 0, found);
    return wide;
}

bool isPath(const std::wstring& argument)
{
    return argument.size() > 2 && iswalpha(argument[0]) && argument[1] == L':' &&
           (argument[2] == L'/' || argument[2] == L'\\');
}

/// As whoever reads a command line takes it apart again.
std::wstring quoted(const std::wstring& argument)
{
    std::wstring all = L"\"";
    std::size_t slashes = 0;
    for (const wchar_t letter : argument) {
        if (letter == L'"')
            all.append(slashes + 1, L'\\');
        slashes = letter == L'\\' ? slashes + 1 : 0;
        all += letter;
    }
    return all.append(slashes, L'\\') + L'"';
}

bool exists(const std::wstring& path)
{
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

HANDLE openFile(const std::wstring& path, DWORD access, DWORD how, DWORD flags = 0)
{
    return CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       nullptr, how, FILE_ATTRIBUTE_TEMPORARY | flags, nullptr);
}

/// A file that the program below writes, passed on as it grows.
class Passage
{
public:
    Passage(const std::wstring& path, DWORD stream)
        : m_file(openFile(path, GENERIC_READ, OPEN_ALWAYS)), m_stream(GetStdHandle(stream))
    {
        if (m_file == INVALID_HANDLE_VALUE)
            fail("no file for the output");
    }
    void pass() const
    {
        char some[65536];
        DWORD length = 0, written = 0;
        while (ReadFile(m_file, some, sizeof some, &length, nullptr) && length > 0)
            WriteFile(m_stream, some, length, &written, nullptr);
    }
    void close() const { CloseHandle(m_file); }

private:
    const HANDLE m_file;
    const HANDLE m_stream;
};

std::wstring makeFolder()
{
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    const std::wstring path = folder + std::wstring(L"host-tool-") +
                              std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(GetTickCount64());
    if (!CreateDirectoryW(path.c_str(), nullptr))
        fail("no folder");
    return path;
}

/// The program on the host and its arguments.
std::vector<std::wstring> hostCommand()
{
    int count = 0;
    wchar_t** const given = CommandLineToArgvW(GetCommandLineW(), &count);
    wchar_t self[4 * MAX_PATH];
    GetModuleFileNameW(nullptr, self, 4 * MAX_PATH);
    const std::wstring path = std::wstring(self).substr(0, std::wstring(self).rfind(L'.'));
    std::vector<std::wstring> command;
    if (exists(path + L".sh"))
        command = {L"bash", hostPath(path + L".sh")};
    else
        command = {path.substr(path.find_last_of(L"\\/") + 1)};
    for (int n = 1; n < count; ++n)
        command.push_back(isPath(given[n]) ? hostPath(given[n]) : given[n]);
    return command;
}

void start(const std::wstring& folder, const std::vector<std::wstring>& command)
{
    std::wstring line = L"setsid sh -c " + quoted(runner) + L" _ " + quoted(hostPath(folder));
    for (const std::wstring& word : command)
        line += L' ' + quoted(word);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(L"\\\\?\\unix\\usr\\bin\\setsid", line.data(), nullptr, nullptr, FALSE, 0,
                        nullptr, nullptr, &startup, &process))
        fail("the host starts nothing");
}

int takeCode(const std::wstring& path)
{
    char text[16] = {};
    DWORD length = 0;
    const HANDLE file = openFile(path, GENERIC_READ, OPEN_EXISTING);
    ReadFile(file, text, sizeof text - 1, &length, nullptr);
    CloseHandle(file);
    return std::atoi(text);
}

} // namespace

int main()
{
    const std::wstring folder = makeFolder();
    const Passage output(folder + L"\\out", STD_OUTPUT_HANDLE);
    const Passage errors(folder + L"\\err", STD_ERROR_HANDLE);
    // The system removes it, whichever way this program ends.
    const HANDLE run = openFile(folder + L"\\run", GENERIC_WRITE | DELETE, CREATE_ALWAYS,
                                FILE_FLAG_DELETE_ON_CLOSE);
    start(folder, hostCommand());
    bool ended = false;
    while (!ended) {
        std::this_thread::sleep_for(look);
        ended = exists(folder + L"\\code");
        output.pass();
        errors.pass();
    }
    const int code = takeCode(folder + L"\\code");
    output.close();
    errors.close();
    CloseHandle(run);
    for (const wchar_t* name : {L"\\out", L"\\err", L"\\code"})
        DeleteFileW((folder + name).c_str());
    RemoveDirectoryW(folder.c_str());
    if (code > signalled)
        TerminateProcess(GetCurrentProcess(), crashed);
    return code;
}
