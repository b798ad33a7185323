// SPDX-License-Identifier: MIT
#pragma once

#include <QSize>
#include <QTransform>

struct AVFormatContext;
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

/// The shape that `frame` and the stream it comes from claim; what no camera makes is not followed.
PictureShape shapeOf(AVFormatContext* source, AVStream* stream, AVFrame* frame);
