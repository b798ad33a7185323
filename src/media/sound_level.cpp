// SPDX-License-Identifier: MIT
#include "media/sound_level.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace
{

/// Where the samples of one channel lie.
struct Channel {
    const uint8_t* first;
    int count;
    int step; // in samples
};

/// The largest distance from silence, in units of full scale. Something that is no number is
/// greater than nothing, and is left out.
template <class Sample> double largest(const Channel& channel, double zero, double full)
{
    const auto* sample = reinterpret_cast<const Sample*>(channel.first);
    double most = 0;
    for (int n = 0; n < channel.count; ++n, sample += channel.step) {
        const double far = std::abs(double(*sample) - zero);
        if (far > most)
            most = far;
    }
    return most / full;
}

double peakOf(const Channel& channel, AVSampleFormat packedFormat)
{
    switch (packedFormat) {
    case AV_SAMPLE_FMT_U8:
        return largest<uint8_t>(channel, 0x80, 0x80);
    case AV_SAMPLE_FMT_S16:
        return largest<int16_t>(channel, 0, double(1U << 15U));
    case AV_SAMPLE_FMT_S32:
        return largest<int32_t>(channel, 0, double(1U << 31U));
    case AV_SAMPLE_FMT_S64:
        return largest<int64_t>(channel, 0, std::ldexp(1.0, 63));
    case AV_SAMPLE_FMT_FLT:
        return largest<float>(channel, 0, 1);
    case AV_SAMPLE_FMT_DBL:
        return largest<double>(channel, 0, 1);
    default:
        return 0;
    }
}

float decibels(double peak)
{
    const double level = peak > 0 ? 20 * std::log10(peak) : double(SoundLevel::Floor);
    return float(std::clamp(level, double(SoundLevel::Floor), 0.0));
}

} // namespace

void SoundLevel::start(int channels)
{
    m_peaks.assign(size_t(std::clamp(channels, 0, MostChannels)), Floor);
}

void SoundLevel::fall(double seconds)
{
    for (float& peak : m_peaks)
        peak = std::max(Floor, peak - float(qMax(0.0, seconds) * Fall));
}

void SoundLevel::add(const AVFrame& frame)
{
    if (frame.format < 0 || frame.format >= AV_SAMPLE_FMT_NB)
        return;
    const auto format = AVSampleFormat(frame.format);
    const int size = av_get_bytes_per_sample(format);
    const int all = frame.ch_layout.nb_channels;
    if (frame.nb_samples <= 0 || frame.sample_rate <= 0 || size <= 0 || all <= 0)
        return;
    const int measured = std::min(all, MostChannels);
    if (m_peaks.size() != size_t(measured))
        start(measured);
    fall(double(frame.nb_samples) / frame.sample_rate);
    const bool isPlanar = av_sample_fmt_is_planar(format) != 0;
    for (int n = 0; n < measured; ++n) {
        const Channel channel{isPlanar ? frame.extended_data[n] : frame.data[0] + n * size,
                              frame.nb_samples, isPlanar ? 1 : all};
        float& peak = m_peaks[size_t(n)];
        peak = std::max(peak, decibels(peakOf(channel, av_get_packed_sample_fmt(format))));
    }
}

QVector<float> SoundLevel::peaks() const
{
    return {m_peaks.cbegin(), m_peaks.cend()};
}
