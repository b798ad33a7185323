// SPDX-License-Identifier: MIT
// Renders an SVG picture into a Windows icon: one PNG entry per size.
//
// Usage: make_icon INPUT.svg OUTPUT.ico

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <array>
#include <cstdio>
#include <vector>

namespace
{

constexpr std::array<int, 6> kSizes = {16, 24, 32, 48, 64, 256};

QByteArray renderPng(QSvgRenderer& renderer, int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(0, 0, size, size));
    painter.end();

    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png;
}

QByteArray icon(QSvgRenderer& renderer)
{
    std::vector<QByteArray> pictures;
    for (const int size : kSizes)
        pictures.push_back(renderPng(renderer, size));

    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    constexpr quint16 iconType = 1;
    out << quint16(0) << iconType << quint16(kSizes.size());

    constexpr int headerBytes = 6;
    constexpr int entryBytes = 16;
    quint32 offset = headerBytes + entryBytes * quint32(kSizes.size());
    for (std::size_t i = 0; i < kSizes.size(); ++i) {
        const auto side = quint8(kSizes[i] == 256 ? 0 : kSizes[i]); // 0 stands for 256
        constexpr quint8 colours = 0;
        constexpr quint8 reserved = 0;
        constexpr quint16 planes = 1;
        constexpr quint16 bitsPerPixel = 32;
        out << side << side << colours << reserved << planes << bitsPerPixel
            << quint32(pictures[i].size()) << offset;
        offset += quint32(pictures[i].size());
    }
    for (const QByteArray& picture : pictures)
        out.writeRawData(picture.constData(), picture.size());
    return bytes;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: make_icon INPUT.svg OUTPUT.ico\n", stderr);
        return 2;
    }
    QSvgRenderer renderer(arguments[1]);
    if (!renderer.isValid()) {
        std::fputs("the input is not a valid SVG picture\n", stderr);
        return 1;
    }
    QFile file(arguments[2]);
    const QByteArray bytes = icon(renderer);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        std::fputs("the icon cannot be written\n", stderr);
        return 1;
    }
    return 0;
}
