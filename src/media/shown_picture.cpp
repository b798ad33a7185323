// SPDX-License-Identifier: MIT
#include "media/shown_picture.h"

#include "media/frame_converter.h"
#include "media/media_packet.h"

extern "C" {
#include <libavutil/frame.h>
}

QSize ShownArea::sizeOf(const QSize& turned) const
{
    if (size.isEmpty() || turned.isEmpty())
        return turned;
    const QSize fitted = fittedRect(turned, size).size() * pixelRatio;
    return fitted.expandedTo({1, 1});
}

bool ShownArea::operator==(const ShownArea& other) const
{
    return size == other.size && qFuzzyCompare(pixelRatio, other.pixelRatio);
}

ShownPicture::ShownPicture(const AVFrame& frame, const PictureShape& shape)
    : m_frame(av_frame_clone(&frame), FreeFrame()), m_shape(shape)
{
}

QImage ShownPicture::toImage() const
{
    QImage image;
    if (m_frame)
        FrameConverter().convert(*m_frame, m_shape, {}, &image);
    return image;
}
