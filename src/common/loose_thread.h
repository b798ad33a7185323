// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

class QThread;

/// Work on files that may hang, as it does on a share that is gone, for longer than anybody wants
/// to wait. Deleting the object asks the work to stop and waits a moment; a thread that hangs is
/// left to the system, and its result goes nowhere.
class LooseThread : public QObject
{
    Q_OBJECT

public:
    /// Runs on the thread and may outlive everything else: it touches only what it holds itself.
    using Work = std::function<QString(const std::atomic<bool>& stop)>;

    explicit LooseThread(const QString& name, Work work);
    ~LooseThread() override;

    void start();

signals:
    /// What the work gave; from the thread in which this object lives.
    void done(const QString& result);

private:
    struct Shared;

    const std::shared_ptr<Shared> m_shared;
    QThread* m_thread;
};
