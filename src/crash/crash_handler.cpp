// SPDX-License-Identifier: MIT
#include "crash/crash_handler.h"

#include "crash/crash_handler_system.h"

#include <QDateTime>
#include <QThread>

#include <atomic>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TARN_HAS_SANITIZER true
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TARN_HAS_SANITIZER true
#endif
#endif
#ifndef TARN_HAS_SANITIZER
#define TARN_HAS_SANITIZER false
#endif

CrashHandler& CrashHandler::instance()
{
    enum { NotMade, BeingMade, Made };
    static std::atomic<int> stage{NotMade};
    static CrashHandler* handler = nullptr;

    int expected = NotMade;
    if (stage.compare_exchange_strong(expected, BeingMade)) {
        handler = new CrashHandler;
        stage = Made;
    }
    while (stage != Made)
        QThread::yieldCurrentThread();
    return *handler;
}

bool CrashHandler::install(const QString& version, Sanitizers sanitizers)
{
    if (m_folder.isEmpty() || (TARN_HAS_SANITIZER && sanitizers == Sanitizers::LeaveToThem))
        return false;
    CrashHandlerSystem::Setup setup;
    setup.folder = m_folder.toStdString();
    setup.program = "TarnHub-" + version.toStdString();
    setup.utcOffset = QDateTime::currentDateTime().offsetFromUtc();
    return CrashHandlerSystem::catchCrashes(setup);
}

void CrashHandler::coverThread()
{
    CrashHandlerSystem::coverThread();
}
