// SPDX-License-Identifier: MIT
#include "media/frame_converter.h"

extern "C" {
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

bool FrameConverter::Colours::operator==(const Colours& other) const
{
    return format == other.format && space == other.space && range == other.range;
}

FrameConverter::FrameConverter() = default;

FrameConverter::~FrameConverter()
{
    sws_freeContext(m_scaler);
}

FrameConverter::Result FrameConverter::convert(const AVFrame& frame, QImage* image)
{
    if (!prepare(frame))
        return Result::Failed;
    *image = m_pool->take();
    if (image->isNull())
        return Result::Busy;
    uint8_t* planes[] = {image->bits(), nullptr, nullptr, nullptr};
    const int strides[] = {image->bytesPerLine(), 0, 0, 0};
    const int rows =
        sws_scale(m_scaler, frame.data, frame.linesize, 0, frame.height, planes, strides);
    return rows == frame.height ? Result::Done : Result::Failed;
}

bool FrameConverter::prepare(const AVFrame& frame)
{
    const QSize size(frame.width, frame.height);
    if (size.isEmpty() || frame.format < 0)
        return false;
    const Colours colours{frame.format, frame.colorspace, frame.color_range};
    const bool isNewSize = !m_pool || m_pool->size() != size;
    if (m_scaler && !isNewSize && m_colours == colours)
        return true;
    sws_freeContext(m_scaler);
    m_scaler = sws_getContext(size.width(), size.height(), AVPixelFormat(frame.format),
                              size.width(), size.height(), AV_PIX_FMT_BGRA, SWS_FAST_BILINEAR,
                              nullptr, nullptr, nullptr);
    if (!m_scaler)
        return false;
    m_colours = colours;
    applyColours(frame);
    if (isNewSize)
        m_pool = std::make_unique<FramePool>(size);
    return true;
}

/// The scaler knows neither matrix nor range by itself, only that old formats have a full one.
void FrameConverter::applyColours(const AVFrame& frame)
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
    if (frame.color_range != AVCOL_RANGE_UNSPECIFIED)
        isFull = frame.color_range == AVCOL_RANGE_JPEG;
    sws_setColorspaceDetails(m_scaler, sws_getCoefficients(frame.colorspace), isFull, outMatrix,
                             outIsFull, brightness, contrast, saturation);
}
