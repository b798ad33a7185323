// SPDX-License-Identifier: MIT
#include "common/loose_thread.h"

#include "crash/crash_handler.h"

#include <QThread>

#include <mutex>

namespace
{
constexpr unsigned long endMs = 200;
}

struct LooseThread::Shared {
    std::atomic<bool> stop{false};
    std::mutex mutex;
    LooseThread* owner = nullptr; // guarded by mutex
};

LooseThread::LooseThread(const QString& name, Work work) : m_shared(std::make_shared<Shared>())
{
    m_shared->owner = this;
    m_thread = QThread::create([shared = m_shared, work = std::move(work)] {
        CrashHandler::coverThread();
        const QString result = work(shared->stop);
        const std::lock_guard<std::mutex> lock(shared->mutex);
        LooseThread* const owner = shared->owner;
        if (owner) {
            QMetaObject::invokeMethod(
                owner, [owner, result] { emit owner->done(result); }, Qt::QueuedConnection);
        }
    });
    m_thread->setObjectName(name);
}

LooseThread::~LooseThread()
{
    {
        const std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->owner = nullptr;
    }
    m_shared->stop = true;
    if (!m_thread->isRunning() || m_thread->wait(endMs)) {
        delete m_thread;
        return;
    }
    connect(m_thread, &QThread::finished, m_thread, &QObject::deleteLater);
    if (m_thread->isFinished())
        m_thread->deleteLater();
}

void LooseThread::start()
{
    m_thread->start();
}
