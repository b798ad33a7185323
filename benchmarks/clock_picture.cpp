// SPDX-License-Identifier: MIT
#include "benchmarks/clock_picture.h"

#include <QColor>

#include <ctime>

namespace ClockPicture
{
namespace
{

// The blocks follow the encoder's, so that they stay sharp at any bit rate.
constexpr int blockSize = 16;
constexpr int blockCount = Width / blockSize;
constexpr int stripHeight = 2 * blockSize;
/// Four and a half hours; what is shown is never as old.
constexpr int timeBits = 24;
constexpr int checkBits = 12;
constexpr int timeMask = (1 << timeBits) - 1;
constexpr char black = 16;
constexpr char white = char(235);
constexpr int surelyBlack = 80;
constexpr int surelyWhite = 175;

static_assert(blockCount == 2 + timeBits + checkBits + 2);

int checkOf(int time)
{
    const char bytes[] = {char(time), char(time >> 8), char(time >> 16)};
    return qChecksum(bytes, sizeof bytes) & ((1 << checkBits) - 1);
}

/// All blocks from left to right, the highest bit first, between two marks.
quint64 blocksOf(int time)
{
    return (quint64(0b10) << (timeBits + checkBits + 2)) | (quint64(time) << (checkBits + 2)) |
           (quint64(checkOf(time)) << 2) | 0b01;
}

std::optional<bool> isWhite(const QImage& row, int block)
{
    const double width = double(row.width()) / blockCount;
    const int middle = int((block + 0.5) * width);
    const int reach = int(width / 8);
    int sum = 0;
    for (int x = middle - reach; x <= middle + reach; ++x)
        sum += qGray(row.pixel(x, row.height() / 2));
    const int grey = sum / (2 * reach + 1);
    if (grey > surelyBlack && grey < surelyWhite)
        return std::nullopt;
    return grey >= surelyWhite;
}

} // namespace

qint64 nowMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * Q_INT64_C(1000) + now.tv_nsec / 1000000;
}

QByteArray make(qint64 ms, int number)
{
    QByteArray picture(Width * Height * 3 / 2, char(128));
    const quint64 blocks = blocksOf(int(ms & timeMask));
    for (int y = 0; y < Height; ++y) {
        char* line = picture.data() + y * Width;
        for (int x = 0; x < Width; ++x) {
            const bool isLit = (blocks >> (blockCount - 1 - x / blockSize)) & 1;
            // A slope that wanders, so that every picture costs a player something.
            line[x] = y >= stripHeight ? char(160 + (x + y / 2 + number * 3) / 8 % 64)
                      : isLit          ? white
                                       : black;
        }
    }
    return picture;
}

std::optional<int> read(const QImage& row)
{
    if (row.width() < 8 * blockCount)
        return std::nullopt;
    quint64 blocks = 0;
    for (int n = 0; n < blockCount; ++n) {
        const std::optional<bool> lit = isWhite(row, n);
        if (!lit)
            return std::nullopt;
        blocks = blocks << 1 | quint64(*lit);
    }
    const int time = int(blocks >> (checkBits + 2)) & timeMask;
    if (blocks != blocksOf(time))
        return std::nullopt;
    return time;
}

int ageMs(int code, qint64 now)
{
    const int age = int(now - code) & timeMask;
    return age > timeMask / 2 ? age - timeMask - 1 : age;
}

} // namespace ClockPicture
