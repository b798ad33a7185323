// SPDX-License-Identifier: MIT
#include "common/loose_queue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

struct LooseQueue::Shared {
    std::mutex mutex;
    std::condition_variable wake;
    // Guarded by mutex.
    std::deque<std::pair<Piece, Piece>> pieces;
    LooseQueue* owner = nullptr; // null: no more pieces come

    void run()
    {
        for (;;) {
            std::pair<Piece, Piece> piece;
            {
                std::unique_lock<std::mutex> lock(mutex);
                wake.wait(lock, [this] { return !owner || !pieces.empty(); });
                if (pieces.empty())
                    return;
                piece = std::move(pieces.front());
                pieces.pop_front();
            }
            piece.first();
            // What it holds goes here too: that may take as long as the work.
            piece.first = nullptr;
            const std::lock_guard<std::mutex> lock(mutex);
            if (owner && piece.second)
                QMetaObject::invokeMethod(owner, std::move(piece.second), Qt::QueuedConnection);
        }
    }
};

LooseQueue::LooseQueue(const QString& name)
    : m_shared(std::make_shared<Shared>())
    , m_thread(name, [shared = m_shared](const std::atomic<bool>&) {
        shared->run();
        return QString();
    })
{
    m_shared->owner = this;
    m_thread.start();
}

LooseQueue::~LooseQueue()
{
    {
        const std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->owner = nullptr;
    }
    m_shared->wake.notify_one();
}

void LooseQueue::add(Piece work, Piece then)
{
    {
        const std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->pieces.emplace_back(std::move(work), std::move(then));
    }
    m_shared->wake.notify_one();
}
