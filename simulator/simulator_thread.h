// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QThread>

#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>

namespace sim
{

/// The one thread in which all boxes of the process have their timers, event sockets and child
/// processes, so that they go on living while the thread of a test or program waits.
class SimulatorThread
{
public:
    /// The process's thread; it ends when the last holder lets go.
    static std::shared_ptr<SimulatorThread> shared();

    SimulatorThread();
    ~SimulatorThread();
    SimulatorThread(const SimulatorThread&) = delete;
    SimulatorThread& operator=(const SimulatorThread&) = delete;

    /// Runs `work` in the thread and waits for it; called in the thread itself, just runs it.
    void run(const std::function<void()>& work);
    /// Gives `object`, and with it its children, to the thread.
    void adopt(QObject* object);

private:
    /// Does the tasks when an event wakes it.
    class Worker : public QObject
    {
    public:
        void add(std::packaged_task<void()> task);
        bool event(QEvent* event) override;

    private:
        std::mutex m_mutex;
        std::deque<std::packaged_task<void()>> m_tasks; // guarded by m_mutex
    };

    QThread m_thread;
    Worker m_worker; // lives in m_thread
};

} // namespace sim
