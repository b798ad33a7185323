// SPDX-License-Identifier: MIT
#include "common/crash_handler.h"

#include <QThread>

#include <atomic>

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
