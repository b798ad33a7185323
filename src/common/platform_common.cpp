// SPDX-License-Identifier: MIT
#include "common/platform.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

namespace
{

/// Looked at once: the window asks for its folders again and again, and the disk may have gone.
/// Empty when the program is not portable.
QString portableRoot()
{
    static const QString root = [] {
        const QString own = QCoreApplication::applicationDirPath();
        return QFileInfo::exists(own + QStringLiteral("/portable.txt"))
                   ? own + QStringLiteral("/data")
                   : QString();
    }();
    return root;
}

} // namespace

namespace Platform
{

QString programPath(const QString& name)
{
    QStringList searched =
        qEnvironmentVariable("PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    searched.erase(std::remove_if(searched.begin(), searched.end(), &QDir::isRelativePath),
                   searched.end());
    return QStandardPaths::findExecutable(name, programFolders(searched));
}

QString dataRoot()
{
    // Before there is an application, its folder is not known.
    if (QCoreApplication::instance() && !portableRoot().isEmpty())
        return portableRoot();
    QString root = qEnvironmentVariable("APPDATA");
    if (root.isEmpty())
        root = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return root.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString curlPath()
{
    const QString found = programPath(QStringLiteral("curl"));
    return found.isEmpty() ? QCoreApplication::applicationDirPath() + QStringLiteral("/curl.exe")
                           : found;
}

QString fpingPath(const QString& wanted)
{
    if (!wanted.isEmpty()) {
        const bool isPath = QDir::fromNativeSeparators(wanted).contains(QLatin1Char('/'));
        const QString found = isPath ? QString() : programPath(wanted);
        return found.isEmpty() ? QFileInfo(wanted).absoluteFilePath() : found;
    }
    const QString shipped =
        QCoreApplication::applicationDirPath() + QStringLiteral("/fping/fping_x64/fping.exe");
    if (QFileInfo::exists(shipped))
        return shipped;
    const QString found = programPath(QStringLiteral("fping"));
    return found.isEmpty() ? shipped : found;
}

} // namespace Platform
