// SPDX-License-Identifier: MIT
#pragma once

#include "media/frame_pool.h"
#include "media/picture_shape.h"

#include <QImage>

#include <memory>

struct AVFrame;
struct SwsContext;

/// Turns decoded pictures into images, in the colours that the picture says it has, in square
/// pixels, upright. Follows sources that change size, format, colours or shape. Belongs to one
/// thread.
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
    Result convert(const AVFrame& frame, const PictureShape& shape, QImage* image);

private:
    struct Source {
        QSize size;
        int format = -1;
        int space = -1;
        int range = -1;
        bool operator==(const Source& other) const;
    };

    bool prepare(const AVFrame& frame, const PictureShape& shape);
    void applyColours(const Source& source);
    bool scale(const AVFrame& frame, QImage& image);

    SwsContext* m_scaler = nullptr;
    Source m_source;
    PictureShape m_shape;
    QImage m_unturned; ///< in between, where the picture is turned
    std::unique_ptr<FramePool> m_pool;
};
