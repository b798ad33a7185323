// SPDX-License-Identifier: MIT
#pragma once

#include <QVector>

#include <vector>

struct AVFrame;

/// How loud sound is: the peak of each channel in dBFS, which falls slowly, as meters do.
class SoundLevel
{
public:
    static constexpr float Floor = -60; ///< nothing is less
    static constexpr float Fall = 20;   ///< dB a second
    /// The first channels of sound that has more.
    static constexpr int MostChannels = 8;

    /// So many channels, all silent, until a frame says otherwise.
    void start(int channels);
    /// Takes decoded sound of any sample format; what is none changes nothing.
    void add(const AVFrame& frame);
    /// Lets time pass without sound.
    void fall(double seconds);

    /// From Floor to 0, each channel.
    QVector<float> peaks() const;

private:
    std::vector<float> m_peaks; // shared with nobody, unlike a QVector
};
