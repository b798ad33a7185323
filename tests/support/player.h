// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_thread.h"

#include <QElapsedTimer>
#include <QImage>

/// A small moving picture, as arguments of FFmpeg.
constexpr const char* Small = "-f lavfi -i testsrc2=size=320x180:rate=25";

/// A thread under test and what it has said.
struct Player {
    explicit Player(const QString& url)
    {
        QObject::connect(&thread, &FFmpegThread::playstatus, &context,
                         [this](int status, const QString&) { statuses << status; });
        QObject::connect(&thread, &FFmpegThread::receiveImage, &context,
                         [this](const QImage& image) {
                             ++pictures;
                             last = image;
                         });
        thread.setUrl(url);
        clock.start();
        thread.play();
    }

    QImage last;
    int pictures = 0;
    QList<int> statuses;
    QElapsedTimer clock;
    QObject context;
    FFmpegThread thread; // goes first
};

/// The largest difference of any colour of any pixel, and how many differ by more than `near`.
struct Difference {
    int largest = 0;
    int far = 0;
};

inline Difference difference(const QImage& image, const QByteArray& bgra, int near)
{
    Difference found;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* ours = image.constScanLine(y);
        const auto* theirs =
            reinterpret_cast<const uchar*>(bgra.constData()) + y * image.width() * 4;
        for (int x = 0; x < image.width() * 4; ++x) {
            const int apart = x % 4 == 3 ? 0 : qAbs(int(ours[x]) - int(theirs[x]));
            found.largest = qMax(found.largest, apart);
            found.far += apart > near ? 1 : 0;
        }
    }
    return found;
}
