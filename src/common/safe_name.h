// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// A file name made of text from the network that stays inside its folder on every system: no
/// separators, control characters, reserved names or leading dots, and no more bytes than a disk
/// takes. The suffix stays. Never empty.
QString safeFileName(const QString& name);

/// The safe name that the Content-Disposition `header` of a reply offers, empty when it offers
/// none.
QString nameInDisposition(const QByteArray& header);

/// What a file is called while its data still comes.
inline QString partSuffix()
{
    return QStringLiteral(".part");
}

/// The first path in `folder` (ending in "/") that neither a file nor one that is still coming has:
/// that of `name`, or of its base with "0", "1"… before the suffix.
QString freePath(const QString& folder, const QString& name);
