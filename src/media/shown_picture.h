// SPDX-License-Identifier: MIT
#pragma once

#include "media/picture_shape.h"

#include <QImage>

#include <memory>

struct AVFrame;

/// Where pictures are shown: they are made in the size that they have there.
struct ShownArea {
    QSize size;            ///< of the widget; empty for pictures in full
    double pixelRatio = 1; ///< pixels of the screen in one of the widget's

    /// The size in pixels of the screen of a picture that is `turned` pixels large.
    QSize sizeOf(const QSize& turned) const;
    bool operator==(const ShownArea& other) const;
};

/// A decoded picture, kept to be had in full while a smaller image of it is shown. Copies share it;
/// any thread may use it.
class ShownPicture
{
public:
    ShownPicture() = default;
    ShownPicture(const AVFrame& frame, const PictureShape& shape);

    bool isNull() const { return !m_frame; }
    /// In square pixels, upright.
    QSize size() const { return m_shape.turnedSize(); }
    /// The picture in full; null when there is none or no memory for it. Takes some milliseconds
    /// per million pixels.
    QImage toImage() const;

private:
    std::shared_ptr<const AVFrame> m_frame;
    PictureShape m_shape;
};
