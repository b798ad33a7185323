// SPDX-License-Identifier: MIT
#include "common/file_digest.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

QString fileMd5(const QString& path, const std::atomic<bool>* stop, std::atomic<int>* pieces)
{
    constexpr qint64 pieceSize = 1048576;
    QFile file(path);
    // Opening a pipe that nobody writes to would wait for ever.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return QString();
    QCryptographicHash hash(QCryptographicHash::Md5);
    while (!file.atEnd()) {
        const QByteArray piece = file.read(pieceSize);
        if (piece.isEmpty() || (stop && *stop))
            return QString();
        hash.addData(piece);
        if (pieces)
            ++*pieces;
    }
    return QString::fromLatin1(hash.result().toHex());
}
