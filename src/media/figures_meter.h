// SPDX-License-Identifier: MIT
#pragma once

#include "media/picture_figures.h"
#include "media/sound_level.h"

#include <deque>
#include <mutex>
#include <utility>

/// How much comes in a second, of late. All times in microseconds.
class RateMeter
{
public:
    void add(qint64 now, qint64 amount);
    /// From the first to the last that came in the last seconds; falls when nothing comes.
    double perSecond(qint64 now) const;

private:
    std::deque<std::pair<qint64, qint64>> m_recent; // when, how much
};

/// Counts what one player does; the player's thread tells, any thread asks. All times are
/// av_gettime_relative()'s.
class FiguresMeter
{
public:
    /// What is known of a source as soon as it is open: codec, decoder.
    void setSource(const PictureFigures& known, int soundChannels);
    void addPacket(qint64 now, int bytes);
    void addPicture(qint64 now, const QSize& size);
    void addSound(qint64 now, const AVFrame& frame);

    PictureFigures figures(qint64 now) const;

private:
    mutable std::mutex m_mutex;
    // Guarded by m_mutex.
    PictureFigures m_known;
    RateMeter m_bytes;
    RateMeter m_pictures;
    SoundLevel m_sound;
    qint64 m_soundAt = 0;
};
