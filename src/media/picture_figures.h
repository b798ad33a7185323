// SPDX-License-Identifier: MIT
#pragma once

#include <QSize>
#include <QString>
#include <QVector>

/// What a player knows of the source that it plays, for the operator to see.
struct PictureFigures {
    QString codec;                ///< as FFmpeg calls it; empty: not open yet
    QSize size;                   ///< of a decoded picture, in pixels; empty before the first one
    double picturesPerSecond = 0; ///< shown of late
    qint64 bitsPerSecond = 0;     ///< come of late, everything that the source carries
    int lagMs = -1;               ///< behind the newest that has come; -1: not live, or not known
    int dropped = 0;              ///< pictures that were never shown
    int threads = 0;              ///< that decode
    int reconnections = 0;        ///< since the source was opened first
    QVector<float> soundLevels;   ///< peak of each channel in dBFS; empty: no sound
};
