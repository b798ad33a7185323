// SPDX-License-Identifier: MIT
#pragma once

#include "media/frame_pool.h"

#include <QImage>

#include <memory>

struct AVFrame;
struct SwsContext;

/// Turns decoded pictures into images of the same size, in the colours that the picture says it
/// has. Follows sources that change size, format or colours. Belongs to one thread.
class FrameConverter
{
public:
    FrameConverter();
    ~FrameConverter();
    FrameConverter(const FrameConverter&) = delete;
    FrameConverter& operator=(const FrameConverter&) = delete;

    enum class Result {
        Done,
        Busy,  ///< all images are still in use; the same picture may be tried again
        Failed ///< the picture cannot be shown
    };

    /// On Done `image` is the picture, in format RGB32, in memory that is written to no more while
    /// any copy of the image lives.
    Result convert(const AVFrame& frame, QImage* image);

private:
    struct Colours {
        int format = -1;
        int space = -1;
        int range = -1;
        bool operator==(const Colours& other) const;
    };

    bool prepare(const AVFrame& frame);
    void applyColours(const AVFrame& frame);

    SwsContext* m_scaler = nullptr;
    Colours m_colours;
    std::unique_ptr<FramePool> m_pool;
};
