// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QSize>
#include <QTransform>

struct AVFrame;
struct AVStream;

/// How a decoded picture is meant to be seen: not every pixel is a square, and not every camera was
/// held upright.
struct PictureShape {
    /// In square pixels, before it is turned; empty when there is no picture.
    QSize size;
    /// Quarter turns and mirrors.
    QTransform turn;

    QSize turnedSize() const;
    bool operator==(const PictureShape& other) const;
};

/// What a stream says of all its pictures.
struct StreamShape {
    int pixelWidth = 0; ///< of a pixel, against its height; 0 when the pictures say it
    int pixelHeight = 0;
    QTransform turn; ///< for pictures that do not have their own
};

StreamShape shapeOf(const AVStream& stream);

/// The shape that `frame` and the stream it comes from claim; what no camera makes is not followed.
PictureShape shapeOf(const StreamShape& stream, const AVFrame& frame);

/// Where a picture of this size is shown in an area: as large as fits, centred.
QRect fittedRect(const QSize& picture, const QSize& area);
