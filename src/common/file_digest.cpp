// SPDX-License-Identifier: MIT
#include "common/file_digest.h"

#include <QFile>
#include <QFileInfo>

QString fileDigest(const QString& path, QCryptographicHash::Algorithm algorithm,
                   const std::atomic<bool>* stop, std::atomic<int>* pieces)
{
    constexpr qint64 pieceSize = 1048576;
    QFile file(path);
    // Opening a pipe that nobody writes to would wait for ever.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return QString();
    QCryptographicHash hash(algorithm);
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
