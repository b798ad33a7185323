// SPDX-License-Identifier: MIT
#include "common/background.h"

#include "common/crash_handler.h"

#include <QEventLoop>
#include <QThread>

#include <memory>

void runInBackground(const std::function<void()>& work)
{
    const std::unique_ptr<QThread> thread(QThread::create([&work] {
        CrashHandler::coverThread();
        work();
    }));
    thread->setObjectName(QStringLiteral("background"));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    if (!thread->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    // The loop also ends when the program closes; the work may still hold its files open.
    thread->wait();
}
