// SPDX-License-Identifier: MIT
#include "simulator/simulator_thread.h"

#include <QMutex>
#include <QMutexLocker>

namespace sim
{

std::shared_ptr<SimulatorThread> SimulatorThread::shared()
{
    static QMutex mutex;
    static std::weak_ptr<SimulatorThread> current; // guarded by mutex
    const QMutexLocker lock(&mutex);
    std::shared_ptr<SimulatorThread> thread = current.lock();
    if (!thread) {
        thread = std::make_shared<SimulatorThread>();
        current = thread;
    }
    return thread;
}

SimulatorThread::SimulatorThread()
{
    m_thread.setObjectName(QStringLiteral("boxes"));
    m_context.moveToThread(&m_thread);
    m_thread.start();
}

SimulatorThread::~SimulatorThread()
{
    m_thread.quit();
    m_thread.wait();
}

void SimulatorThread::run(const std::function<void()>& work)
{
    if (QThread::currentThread() == &m_thread) {
        work();
        return;
    }
    QMetaObject::invokeMethod(&m_context, work, Qt::BlockingQueuedConnection);
}

void SimulatorThread::adopt(QObject* object)
{
    object->moveToThread(&m_thread);
}

} // namespace sim
