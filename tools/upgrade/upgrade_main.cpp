// SPDX-License-Identifier: MIT
//
// Upgrade.exe, which Tarn Hub starts when a new version has been downloaded and the user has
// agreed:
//
//   Upgrade.exe "Tarn Hub.exe" INSTALLER VERSION
//
// It is replaced together with the program, while it runs: the installer moves it out of the way.
// At its end it starts the new one, which removes it then:
//
//   Upgrade.exe /tidy PROCESS

#include "hand_over.h"
#include "manifest.h"
#include "paths.h"
#include "replacement.h"
#include "texts.h"

#include <windows.h>
// They need the one before.
#include <commctrl.h>
#include <shellapi.h>

#include <atomic>
#include <string>
#include <thread>

namespace
{

constexpr int argumentCount = 4;
constexpr int tidyArgumentCount = 3;
constexpr DWORD formerMs = 20000;

HRESULT CALLBACK watchWork(HWND dialog, UINT event, WPARAM, LPARAM, LONG_PTR done)
{
    const auto& isDone = *reinterpret_cast<const std::atomic<bool>*>(done);
    if (event == TDN_CREATED)
        SendMessageW(dialog, TDM_SET_PROGRESS_BAR_MARQUEE, TRUE, 0);
    if (event == TDN_TIMER && isDone)
        SendMessageW(dialog, TDM_CLICK_BUTTON, IDCLOSE, 0);
    return S_OK;
}

/// Shows that something goes on, until it is done. Who closes it does not stop what goes on.
void showProgress(const std::atomic<bool>& isDone)
{
    TASKDIALOGCONFIG dialog = {};
    dialog.cbSize = sizeof dialog;
    dialog.hInstance = GetModuleHandleW(nullptr);
    dialog.dwFlags = TDF_SHOW_MARQUEE_PROGRESS_BAR | TDF_CALLBACK_TIMER;
    dialog.dwCommonButtons = TDCBF_CLOSE_BUTTON;
    dialog.pszWindowTitle = L"Tarn Hub";
    dialog.pszMainIcon = MAKEINTRESOURCEW(1);
    dialog.pszContent = text(Text::Installing);
    dialog.pfCallback = &watchWork;
    dialog.lpCallbackData = reinterpret_cast<LONG_PTR>(&isDone);
    TaskDialogIndirect(&dialog, nullptr, nullptr, nullptr);
}

void showProblem(Text problem, const std::wstring& detail)
{
    std::wstring message = text(problem);
    if (!detail.empty())
        message += L"\n\n" + detail;
    // The program has just come up and would cover it.
    MessageBoxW(nullptr, message.c_str(), L"Tarn Hub", MB_OK | MB_ICONWARNING | MB_TOPMOST);
}

/// By the new Upgrade.exe, when there is one.
void letTidy()
{
    const std::wstring path = folderOf(ownPath()) + L"\\Upgrade.exe";
    std::wstring line = L'"' + path + L"\" /tidy " + std::to_wstring(GetCurrentProcessId());
    STARTUPINFOW how = {};
    how.cb = sizeof how;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &how, &process))
        return;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

/// After the end of the former Upgrade.exe.
void tidy(const wchar_t* former)
{
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, DWORD(wcstoul(former, nullptr, 10)));
    if (process) {
        WaitForSingleObject(process, formerMs);
        CloseHandle(process);
    }
    const std::wstring folder = folderOf(ownPath());
    // Not while another upgrade is under way.
    const HANDLE setup = OpenMutexW(SYNCHRONIZE, FALSE, L"TarnHubSetup");
    if (setup)
        CloseHandle(setup);
    else if (Manifest::read(folder).isOurs)
        Replacement::clean(folder);
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    if (words && count == tidyArgumentCount && std::wstring(words[1]) == L"/tidy") {
        tidy(words[2]);
        return 0;
    }
    if (!words || count != argumentCount) {
        showProblem(Text::NotAsked, {});
        return 1;
    }
    HandOver handOver(words[1], words[2], words[3]);
    std::atomic<bool> isDone{false};
    std::thread work([&handOver, &isDone] {
        // The shell, which asks for the administrator's right, wants it.
        const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        handOver.run();
        if (SUCCEEDED(com))
            CoUninitialize();
        isDone = true;
    });
    showProgress(isDone);
    work.join();
    if (handOver.problem() == Text::None) {
        letTidy();
        return 0;
    }
    showProblem(handOver.problem(), handOver.detail());
    return 1;
}
