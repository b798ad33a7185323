// SPDX-License-Identifier: MIT
#include "media/picture_shape.h"

#include "common/limits.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

/// The flattest and the tallest pixel that is believed.
constexpr double mostStretch = 4;

/// `stored` in square pixels; none of them are lost.
QSize squared(const QSize& stored, const AVRational& pixel)
{
    const double ratio = pixel.num > 0 && pixel.den > 0 ? av_q2d(pixel) : 1;
    if (ratio > mostStretch || ratio < 1 / mostStretch)
        return stored;
    const QSize size = ratio > 1 ? QSize(int(std::lround(stored.width() * ratio)), stored.height())
                                 : QSize(stored.width(), int(std::lround(stored.height() / ratio)));
    return qint64(size.width()) * size.height() > Limits::PicturePixels ? stored : size;
}

/// The nearest of the eight ways to lay down a picture; as it is when that is not near.
QTransform turnOf(const int32_t (&matrix)[9])
{
    const double entries[] = {double(matrix[0]), double(matrix[1]), double(matrix[3]),
                              double(matrix[4])};
    double largest = 0;
    for (double entry : entries)
        largest = std::max(largest, std::abs(entry));
    if (largest <= 0)
        return {};
    int turn[4];
    for (int n = 0; n < 4; ++n)
        turn[n] = int(std::lround(entries[n] / largest));
    const bool isTurn = std::abs(turn[0] * turn[3] - turn[1] * turn[2]) == 1 &&
                        turn[0] * turn[1] == 0 && turn[2] * turn[3] == 0;
    return isTurn ? QTransform(turn[0], turn[1], turn[2], turn[3], 0, 0) : QTransform();
}

QTransform turnFrom(const uint8_t* data, size_t bytes)
{
    int32_t matrix[9];
    if (!data || bytes < sizeof matrix)
        return {};
    std::memcpy(matrix, data, sizeof matrix);
    return turnOf(matrix);
}

} // namespace

QSize PictureShape::turnedSize() const
{
    return turn.mapRect(QRect(QPoint(), size)).size();
}

bool PictureShape::operator==(const PictureShape& other) const
{
    return size == other.size && turn == other.turn;
}

StreamShape shapeOf(const AVStream& stream)
{
    StreamShape shape;
    shape.pixelWidth = stream.sample_aspect_ratio.num;
    shape.pixelHeight = stream.sample_aspect_ratio.den;
    size_t bytes = 0;
    const uint8_t* data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &bytes);
    shape.turn = turnFrom(data, bytes);
    return shape;
}

PictureShape shapeOf(const StreamShape& stream, const AVFrame& frame)
{
    PictureShape shape;
    const bool isSaid = stream.pixelWidth > 0 && stream.pixelHeight > 0;
    shape.size = squared({frame.width, frame.height},
                         isSaid ? AVRational{stream.pixelWidth, stream.pixelHeight}
                                : frame.sample_aspect_ratio);
    const auto* own = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
    shape.turn = own ? turnFrom(own->data, own->size) : stream.turn;
    return shape;
}

QRect fittedRect(const QSize& picture, const QSize& area)
{
    const double across = double(area.width()) / picture.width();
    const double down = double(area.height()) / picture.height();
    const double scale = down <= across ? down : across;
    return {int((area.width() - picture.width() * scale) * 0.5),
            int((area.height() - picture.height() * scale) * 0.5), int(picture.width() * scale),
            int(picture.height() * scale)};
}
