// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>

#include <memory>

/// A few picture buffers of one size, handed out as images and used again when the last copy of
/// the image is gone. The buffers outlive the pool as long as an image refers to them. Images may
/// be copied and dropped on any thread; the pool itself belongs to one.
class FramePool
{
public:
    /// How many pictures may be under way at once: one is shown, one painted next, and the thread
    /// that waits for the event loop may still be one ahead.
    static constexpr int Limit = 4;

    /// `size` is in pixels and not empty. Memory is taken when it is first needed.
    explicit FramePool(const QSize& size);
    ~FramePool();
    FramePool(const FramePool&) = delete;
    FramePool& operator=(const FramePool&) = delete;

    QSize size() const;
    /// A picture in format RGB32 that nobody else sees, its content left over from before. Null
    /// when all buffers are in use or there is no memory.
    QImage take();

private:
    struct Shared;
    struct Slot;
    static void giveBack(void* slot);

    std::shared_ptr<Shared> m_shared;
};
