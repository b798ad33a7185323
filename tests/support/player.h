// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_thread.h"

#include <QElapsedTimer>
#include <QImage>

/// A thread under test and what it has said.
struct Player {
    explicit Player(const QString& url,
                    MediaOptions::Origin origin = MediaOptions::Origin::Operator)
    {
        QObject::connect(&thread, &FFmpegThread::playstatus, &context,
                         [this](int status, const QString&) { statuses << status; });
        QObject::connect(&thread, &FFmpegThread::receiveImage, &context,
                         [this](const QImage& image) {
                             // Its pixels were handed over by Qt, whose locks the thread
                             // sanitizer does not see; it sees this one.
                             (void)thread.shown();
                             ++pictures;
                             last = image;
                         });
        thread.setUrl(url);
        thread.setOrigin(origin);
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

/// How many colours of pixels differ by more than `near`, from that column on.
inline int difference(const QImage& image, const QByteArray& bgra, int near, int column = 0)
{
    int far = 0;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* ours = image.constScanLine(y);
        const auto* theirs =
            reinterpret_cast<const uchar*>(bgra.constData()) + y * image.width() * 4;
        for (int x = column * 4; x < image.width() * 4; ++x)
            far += x % 4 != 3 && qAbs(int(ours[x]) - int(theirs[x])) > near ? 1 : 0;
    }
    return far;
}
