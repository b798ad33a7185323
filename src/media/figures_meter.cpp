// SPDX-License-Identifier: MIT
#include "media/figures_meter.h"

namespace
{

constexpr qint64 meterSecondUs = 1000000;
constexpr qint64 windowUs = 3 * meterSecondUs;
/// After so long without anything the pause counts too.
constexpr qint64 pauseUs = meterSecondUs / 2;
/// What arrives in one go is no rate.
constexpr qint64 shortestUs = meterSecondUs / 10;
/// Sources send as many packets as they like.
constexpr size_t mostKept = 1000;
/// Sound that comes in time leaves no gap longer than this.
constexpr qint64 soundGapUs = meterSecondUs / 5;

} // namespace

void RateMeter::add(qint64 now, qint64 amount)
{
    m_recent.emplace_back(now, amount);
    while (m_recent.size() > mostKept || m_recent.front().first < now - windowUs)
        m_recent.pop_front();
}

double RateMeter::perSecond(qint64 now) const
{
    auto each = m_recent.cbegin();
    while (each != m_recent.cend() && each->first < now - windowUs)
        ++each;
    if (each == m_recent.cend())
        return 0;
    const qint64 first = each->first;
    // What comes first begins the time; its amount belongs to the time before.
    qint64 sum = 0;
    while (++each != m_recent.cend())
        sum += each->second;
    const qint64 last = m_recent.back().first;
    const qint64 end = now - last > pauseUs ? now : last;
    return double(sum) * meterSecondUs / double(qMax(end - first, shortestUs));
}

void FiguresMeter::setSource(const PictureFigures& known, int soundChannels)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_known = known;
    m_sound.start(soundChannels);
}

void FiguresMeter::addPacket(qint64 now, int bytes)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_bytes.add(now, bytes);
}

void FiguresMeter::addPicture(qint64 now, const QSize& size)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_known.size = size;
    m_pictures.add(now, 1);
}

void FiguresMeter::addSound(qint64 now, const AVFrame& frame)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_sound.add(frame);
    m_soundAt = now;
}

PictureFigures FiguresMeter::figures(qint64 now) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    PictureFigures figures = m_known;
    figures.bitsPerSecond = qint64(m_bytes.perSecond(now) * 8);
    figures.picturesPerSecond = m_pictures.perSecond(now);
    SoundLevel sound = m_sound;
    // Sound that breaks off is no longer loud.
    if (m_soundAt != 0 && now - m_soundAt > soundGapUs)
        sound.fall(double(now - m_soundAt) / meterSecondUs);
    figures.soundLevels = sound.peaks();
    return figures;
}
