// SPDX-License-Identifier: MIT
#include "media/frame_converter.h"

#include "common/platform.h"

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

/// Whether pictures of that format are best scaled as they are: then the scaler has half as much to
/// do, and has a fast way to the colours of a picture that keeps its size.
bool isFastToResize(int format)
{
    return format == AV_PIX_FMT_YUV420P || format == AV_PIX_FMT_YUVJ420P ||
           format == AV_PIX_FMT_YUV422P || format == AV_PIX_FMT_YUVJ422P;
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

SwsContext* newScaler(const QSize& from, int fromFormat, const QSize& to, int toFormat)
{
    const int manner = SWS_FAST_BILINEAR | (Platform::scalesRowsWrongly() ? SWS_ACCURATE_RND : 0);
    return sws_getContext(from.width(), from.height(), AVPixelFormat(fromFormat), to.width(),
                          to.height(), AVPixelFormat(toFormat), manner, nullptr, nullptr, nullptr);
}

/// The scaler knows neither matrix nor range by itself, only that old formats have a full one. What
/// goes in and comes out in the same format keeps its colours.
void applyColours(SwsContext* scaler, int space, int range, int height, bool isSameFormat)
{
    int* matrix = nullptr;
    int* outMatrix = nullptr;
    int isFull = 0;
    int outIsFull = 0;
    int brightness = 0;
    int contrast = 0;
    int saturation = 0;
    if (sws_getColorspaceDetails(scaler, &matrix, &isFull, &outMatrix, &outIsFull, &brightness,
                                 &contrast, &saturation) < 0)
        return;
    if (range != AVCOL_RANGE_UNSPECIFIED)
        isFull = range == AVCOL_RANGE_JPEG;
    const bool isHd = space == AVCOL_SPC_UNSPECIFIED && height >= hdHeight;
    const int* in = sws_getCoefficients(isHd ? SWS_CS_ITU709 : space);
    sws_setColorspaceDetails(scaler, in, isFull, isSameFormat ? in : outMatrix,
                             isSameFormat ? isFull : outIsFull, brightness, contrast, saturation);
}

/// A picture to write to; null when there is no memory for it.
MediaFrame newFrame(const QSize& size, int format)
{
    MediaFrame frame(av_frame_alloc());
    if (!frame)
        return nullptr;
    frame->width = size.width();
    frame->height = size.height();
    frame->format = format;
    return av_frame_get_buffer(frame.get(), 0) >= 0 ? std::move(frame) : nullptr;
}

} // namespace

void FrameConverter::FreeScaler::operator()(SwsContext* scaler) const
{
    sws_freeContext(scaler);
}

bool FrameConverter::Source::operator==(const Source& other) const
{
    return size == other.size && format == other.format && space == other.space &&
           range == other.range && shape == other.shape && area == other.area;
}

FrameConverter::FrameConverter() = default;

FrameConverter::~FrameConverter() = default;

FrameConverter::Result FrameConverter::convert(const AVFrame& frame, const PictureShape& shape,
                                               const ShownArea& area, QImage* image)
{
    if (!prepare({{frame.width, frame.height},
                  frame.format,
                  frame.colorspace,
                  frame.color_range,
                  shape,
                  area}))
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
    const AVFrame* source = &frame;
    if (m_resizer) {
        if (sws_scale(m_resizer.get(), frame.data, frame.linesize, 0, frame.height, m_resized->data,
                      m_resized->linesize) != m_resized->height)
            return false;
        source = m_resized.get();
    }
    uint8_t* planes[] = {image.bits(), nullptr, nullptr, nullptr};
    const int strides[] = {image.bytesPerLine(), 0, 0, 0};
    if (sws_scale(m_coloured.get(), source->data, source->linesize, 0, source->height, planes,
                  strides) != image.height())
        return false;
    if (hasAlpha(frame.format))
        makeOpaque(image);
    return true;
}

bool FrameConverter::prepare(const Source& source)
{
    if (source.size.isEmpty() || source.shape.size.isEmpty() || source.format < 0)
        return false;
    if (m_coloured && m_source == source)
        return true;
    const QSize turned = source.area.sizeOf(source.shape.turnedSize());
    const bool isUpright = source.shape.turn.isIdentity();
    const QSize size = source.shape.turn.mapRect(QRect(QPoint(), turned)).size();
    m_coloured.reset();
    if (!prepareScalers(source, size))
        return false;
    // A plain image has no room for the whole vectors that the scaler writes.
    m_unturned = isUpright ? QImage() : FramePool(size).take();
    if (m_unturned.isNull() && !isUpright) {
        m_coloured.reset();
        return false;
    }
    if (!m_pool || m_pool->size() != turned)
        m_pool = std::make_unique<FramePool>(turned);
    m_source = source;
    return true;
}

bool FrameConverter::prepareScalers(const Source& source, const QSize& size)
{
    m_resizer.reset();
    m_resized.reset();
    const bool isTwice = size != source.size && isFastToResize(source.format);
    if (isTwice) {
        m_resizer.reset(newScaler(source.size, source.format, size, source.format));
        m_resized = newFrame(size, source.format);
        if (!m_resizer || !m_resized)
            return false;
        applyColours(m_resizer.get(), source.space, source.range, source.size.height(), true);
    }
    m_coloured.reset(newScaler(isTwice ? size : source.size, source.format, size, AV_PIX_FMT_BGRA));
    if (!m_coloured)
        return false;
    applyColours(m_coloured.get(), source.space, source.range, source.size.height(), false);
    return true;
}
