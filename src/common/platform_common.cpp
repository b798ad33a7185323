// SPDX-License-Identifier: MIT
#include "common/platform.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

namespace Platform
{

QString dataRoot()
{
    QString root = qEnvironmentVariable("APPDATA");
    if (root.isEmpty())
        root = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return root.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString fpingPath(const QString& wanted)
{
    if (!wanted.isEmpty())
        return wanted;
    const QString shipped =
        QCoreApplication::applicationDirPath() + QStringLiteral("/fping/fping_x64/fping.exe");
    if (QFileInfo::exists(shipped))
        return shipped;
    const QString installed = QStandardPaths::findExecutable(QStringLiteral("fping"));
    if (!installed.isEmpty())
        return installed;
    // Debian and others keep it where only root's search path looks.
    const QString admin = QStandardPaths::findExecutable(
        QStringLiteral("fping"), {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")});
    return admin.isEmpty() ? shipped : admin;
}

} // namespace Platform
