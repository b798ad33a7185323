// SPDX-License-Identifier: MIT
#pragma once

#include "common/loose_thread.h"

#include <functional>
#include <memory>

/// Work on files that may hang, one piece after the other, on a thread of its own. Deleting the
/// object waits a moment: what was added before is still done, unless its file hangs until the
/// program ends, and nobody hears of it.
class LooseQueue : public QObject
{
    Q_OBJECT

public:
    using Piece = std::function<void()>;

    explicit LooseQueue(const QString& name);
    ~LooseQueue() override;

    /// Lets `work` run on the thread, where it may outlive everything else: it touches only what
    /// it holds itself. `then`, which may be null, follows in the thread in which this object
    /// lives.
    void add(Piece work, Piece then);

private:
    struct Shared;

    const std::shared_ptr<Shared> m_shared;
    LooseThread m_thread;
};
