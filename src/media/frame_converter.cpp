// SPDX-License-Identifier: MIT
#include "media/frame_converter.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <QPainter>

namespace
{

/// From this height on a picture without a word about its colours has those of HD.
constexpr int hdHeight = 720;

bool hasAlpha(int format)
{
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(AVPixelFormat(format));
    return description && (description->flags & AV_PIX_FMT_FLAG_ALPHA);
}

/// What shines through is shown in full, as the format of the image wants it.
void makeOpaque(QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            row[x] |= 0xff000000;
    }
}

void paintTurned(const QImage& image, const QTransform& turn, QImage& turned)
{
    const QRect place = turn.mapRect(image.rect());
    QPainter painter(&turned);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setTransform(turn * QTransform::fromTranslate(-place.x(), -place.y()));
    painter.drawImage(0, 0, image);
}

} // namespace

bool FrameConverter::Source::operator==(const Source& other) const
{
    return size == other.size && format == other.format && space == other.space &&
           range == other.range;
}

FrameConverter::FrameConverter() = default;

FrameConverter::~FrameConverter()
{
    sws_freeContext(m_scaler);
}

FrameConverter::Result FrameConverter::convert(const AVFrame& frame, const PictureShape& shape,
                                               QImage* image)
{
    if (!prepare(frame, shape))
        return Result::Failed;
    *image = m_pool->take();
    if (image->isNull())
        return Result::Busy;
    if (m_unturned.isNull())
        return scale(frame, *image) ? Result::Done : Result::Failed;
    if (!scale(frame, m_unturned))
        return Result::Failed;
    paintTurned(m_unturned, shape.turn, *image);
    return Result::Done;
}

bool FrameConverter::scale(const AVFrame& frame, QImage& image)
{
    uint8_t* planes[] = {image.bits(), nullptr, nullptr, nullptr};
    const int strides[] = {image.bytesPerLine(), 0, 0, 0};
    if (sws_scale(m_scaler, frame.data, frame.linesize, 0, frame.height, planes, strides) !=
        image.height())
        return false;
    if (hasAlpha(frame.format))
        makeOpaque(image);
    return true;
}

bool FrameConverter::prepare(const AVFrame& frame, const PictureShape& shape)
{
    const QSize size(frame.width, frame.height);
    if (size.isEmpty() || shape.size.isEmpty() || frame.format < 0)
        return false;
    const Source source{size, frame.format, frame.colorspace, frame.color_range};
    if (m_scaler && m_source == source && m_shape == shape)
        return true;
    sws_freeContext(m_scaler);
    m_scaler = sws_getContext(size.width(), size.height(), AVPixelFormat(frame.format),
                              shape.size.width(), shape.size.height(), AV_PIX_FMT_BGRA,
                              SWS_FAST_BILINEAR, nullptr, nullptr, nullptr);
    if (!m_scaler)
        return false;
    m_source = source;
    m_shape = shape;
    applyColours(source);
    m_unturned = shape.turn.isIdentity() ? QImage() : QImage(shape.size, QImage::Format_RGB32);
    if (m_unturned.isNull() && !shape.turn.isIdentity())
        return false;
    if (!m_pool || m_pool->size() != shape.turnedSize())
        m_pool = std::make_unique<FramePool>(shape.turnedSize());
    return true;
}

/// The scaler knows neither matrix nor range by itself, only that old formats have a full one.
void FrameConverter::applyColours(const Source& source)
{
    int* matrix = nullptr;
    int* outMatrix = nullptr;
    int isFull = 0;
    int outIsFull = 0;
    int brightness = 0;
    int contrast = 0;
    int saturation = 0;
    if (sws_getColorspaceDetails(m_scaler, &matrix, &isFull, &outMatrix, &outIsFull, &brightness,
                                 &contrast, &saturation) < 0)
        return;
    if (source.range != AVCOL_RANGE_UNSPECIFIED)
        isFull = source.range == AVCOL_RANGE_JPEG;
    const bool isHd = source.space == AVCOL_SPC_UNSPECIFIED && source.size.height() >= hdHeight;
    sws_setColorspaceDetails(m_scaler, sws_getCoefficients(isHd ? SWS_CS_ITU709 : source.space),
                             isFull, outMatrix, outIsFull, brightness, contrast, saturation);
}
