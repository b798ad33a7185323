// SPDX-License-Identifier: MIT
#include "simulator/simulator_thread.h"

#include <QCoreApplication>
#include <QEvent>

namespace sim
{

std::shared_ptr<SimulatorThread> SimulatorThread::shared()
{
    static std::mutex mutex;
    static std::weak_ptr<SimulatorThread> current; // guarded by mutex
    const std::lock_guard<std::mutex> lock(mutex);
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
    m_worker.moveToThread(&m_thread);
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
    std::packaged_task<void()> task(work);
    const std::future<void> done = task.get_future();
    m_worker.add(std::move(task));
    done.wait();
}

void SimulatorThread::Worker::add(std::packaged_task<void()> task)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_tasks.push_back(std::move(task));
    }
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

bool SimulatorThread::Worker::event(QEvent* event)
{
    if (event->type() != QEvent::User)
        return QObject::event(event);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_tasks.empty()) {
        std::packaged_task<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
    return true;
}

void SimulatorThread::adopt(QObject* object)
{
    object->moveToThread(&m_thread);
}

} // namespace sim
