// SPDX-License-Identifier: MIT
#include "common/file_digest.h"

#include <QCryptographicHash>
#include <QFile>

QString fileMd5(const QString& path, const std::atomic<bool>* stop)
{
    constexpr qint64 pieceSize = 1048576;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QCryptographicHash hash(QCryptographicHash::Md5);
    while (!file.atEnd()) {
        const QByteArray piece = file.read(pieceSize);
        if (piece.isEmpty() || (stop && *stop))
            return QString();
        hash.addData(piece);
    }
    return QString::fromLatin1(hash.result().toHex());
}
