// SPDX-License-Identifier: MIT
#include "media/frame_pool.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/mem.h>
}

#include <array>
#include <atomic>
#include <mutex>

namespace
{

/// The converter writes whole vectors: the end of a row without room for one it leaves out, and
/// over the end of the last one it may run.
constexpr int vectorBytes = 128;

int bytesPerRow(const QSize& size)
{
    return (size.width() * 4 + vectorBytes - 1) / vectorBytes * vectorBytes;
}

} // namespace

struct FramePool::Slot {
    std::shared_ptr<Shared> owner;       // while an image refers to the buffer; under its mutex
    std::atomic<Shared*> guard{nullptr}; // owner, for who gives the buffer back
    uchar* buffer = nullptr;
};

struct FramePool::Shared {
    explicit Shared(const QSize& pictureSize) : size(pictureSize) {}
    ~Shared()
    {
        for (Slot& slot : entries)
            av_free(slot.buffer);
    }

    const QSize size;
    std::mutex mutex; // guards what follows
    std::array<Slot, Limit> entries;
};

FramePool::FramePool(const QSize& size) : m_shared(std::make_shared<Shared>(size)) {}

FramePool::~FramePool() = default;

QSize FramePool::size() const
{
    return m_shared->size;
}

QImage FramePool::take()
{
    const QSize size = m_shared->size;
    const std::lock_guard<std::mutex> lock(m_shared->mutex);
    for (Slot& slot : m_shared->entries) {
        if (slot.owner)
            continue;
        if (!slot.buffer) {
            const bool isSane =
                av_image_check_size(uint(size.width()), uint(size.height()), 0, nullptr) >= 0;
            const size_t bytes = size_t(bytesPerRow(size)) * size_t(size.height()) + vectorBytes;
            slot.buffer = isSane ? static_cast<uchar*>(av_malloc(bytes)) : nullptr;
        }
        if (!slot.buffer)
            return {};
        QImage image(slot.buffer, size.width(), size.height(), bytesPerRow(size),
                     QImage::Format_RGB32, &FramePool::giveBack, &slot);
        if (!image.isNull()) {
            slot.owner = m_shared;
            slot.guard = m_shared.get();
        }
        return image;
    }
    return {};
}

void FramePool::giveBack(void* slot)
{
    // The last image takes the buffers with it, but only after the lock is released.
    std::shared_ptr<Shared> owner;
    auto* returned = static_cast<Slot*>(slot);
    const std::lock_guard<std::mutex> lock(returned->guard.load()->mutex);
    owner = std::move(returned->owner);
}
