// SPDX-License-Identifier: MIT
#pragma once

#include "media/frame_pool.h"
#include "media/media_packet.h"
#include "media/picture_shape.h"
#include "media/shown_picture.h"

#include <QImage>

#include <memory>

struct AVFrame;
struct SwsContext;

/// Turns decoded pictures into images, in the colours that the picture says it has, in square
/// pixels, upright, in the size in which they are shown. Follows sources that change size, format,
/// colours or shape. Belongs to one thread.
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
    Result convert(const AVFrame& frame, const PictureShape& shape, const ShownArea& area,
                   QImage* image);

private:
    struct FreeScaler {
        void operator()(SwsContext* scaler) const;
    };
    using Scaler = std::unique_ptr<SwsContext, FreeScaler>;

    struct Source {
        QSize size;
        int format = -1;
        int space = -1;
        int range = -1;
        PictureShape shape;
        ShownArea area;
        bool operator==(const Source& other) const;
    };

    bool prepare(const Source& source);
    bool prepareScalers(const Source& source, const QSize& size);
    bool scale(const AVFrame& frame, QImage& image);

    Scaler m_resizer;     ///< null where one scaler does it all
    Scaler m_coloured;    ///< to the colours of the image
    MediaFrame m_resized; ///< in between
    Source m_source;
    QImage m_unturned; ///< in between, where the picture is turned
    std::unique_ptr<FramePool> m_pool;
};
