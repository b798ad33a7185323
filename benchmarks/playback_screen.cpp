// SPDX-License-Identifier: MIT
#include "benchmarks/playback_screen.h"

#include "benchmarks/clock_picture.h"

#include <QColor>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QThread>

#include <algorithm>
#include <functional>
#include <unistd.h>

namespace PlaybackScreen
{
namespace
{

constexpr int limitMs = 15000;
constexpr unsigned long lookUs = 500;
/// Brighter than a window without a picture.
constexpr int brightness = 90;
/// Through the middle of the clock's blocks.
constexpr int clockRow = 32;

QImage grab(const QRect& area)
{
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

bool isBright(QRgb pixel)
{
    return std::max({qRed(pixel), qGreen(pixel), qBlue(pixel)}) > brightness;
}

/// Away from the middle, where words may be.
bool isPictureShown()
{
    return isBright(grab({200, 160, 8, 8}).pixel(4, 4));
}

bool waitUntilSeen(const std::function<bool()>& isSeen)
{
    QElapsedTimer clock;
    clock.start();
    while (!isSeen()) {
        if (clock.elapsed() > limitMs)
            return false;
        QThread::usleep(lookUs);
    }
    return true;
}

} // namespace

bool waitForPicture(bool shown)
{
    return waitUntilSeen([shown] { return isPictureShown() == shown; });
}

bool waitForClock(bool shown)
{
    return waitUntilSeen([shown] { return clockCode().has_value() == shown; });
}

QRect brightArea()
{
    const QImage all = grab(QGuiApplication::primaryScreen()->geometry());
    QRect area;
    for (int y = 0; y < all.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(all.constScanLine(y));
        const auto* end = line + all.width();
        const auto* first = std::find_if(line, end, isBright);
        if (first == end)
            continue;
        const auto* last = end - 1;
        while (!isBright(*last))
            --last;
        area |= QRect(QPoint(int(first - line), y), QPoint(int(last - line), y));
    }
    return area;
}

std::optional<int> clockCode()
{
    return ClockPicture::read(grab({0, clockRow, Width, 1}));
}

double serverSeconds()
{
    const QString display = QString::fromLocal8Bit(qgetenv("DISPLAY")).mid(1).section('.', 0, 0);
    QFile lock("/tmp/.X" + display + "-lock");
    if (!lock.open(QIODevice::ReadOnly))
        return 0;
    QFile stat("/proc/" + QString::fromLatin1(lock.readAll().trimmed()) + "/stat");
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = stat.readAll().split(')').last().simplified().split(' ');
    return (fields.at(11).toDouble() + fields.at(12).toDouble()) / double(sysconf(_SC_CLK_TCK));
}

} // namespace PlaybackScreen
