// SPDX-License-Identifier: MIT
#include "web/download_name.h"

#include "common/safe_name.h"

#include <QFileInfo>
#include <QRegularExpression>

QString offeredName(const QString& suggested)
{
    static const QRegularExpression forbidden(QStringLiteral("[\\\\/:*?\"<>|]"));
    QString name = suggested;
    return safeFileName(name.remove(forbidden));
}

QString saveFilter(const QString& name)
{
    const QString all = QStringLiteral("All file(*.*)");
    // Brackets, blanks and semicolons would become filters of their own.
    static const QRegularExpression plain(QStringLiteral("^[\\w~+-]+$"),
                                          QRegularExpression::UseUnicodePropertiesOption);
    const QString suffix = QFileInfo(name).suffix();
    if (!plain.match(suffix).hasMatch())
        return all;
    return QStringLiteral("%1(*.%1);;").arg(suffix) + all;
}
