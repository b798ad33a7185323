// SPDX-License-Identifier: MIT
#include "common/platform.h"

#include <QtGlobal>

#ifndef Q_OS_WIN

#include <QFileInfo>
#include <QProcess>
#include <QTextCodec>

namespace Platform
{

ChildInput curlInput(const QStringList& arguments)
{
    return {arguments, QByteArray()};
}

void useUtf8ForChildProcesses()
{
    // Under the plain C locale Qt would turn every non-Latin letter of a command line into "?".
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

bool revealFile(const QString& path)
{
    return QProcess::startDetached(QStringLiteral("xdg-open"), {QFileInfo(path).absolutePath()});
}

} // namespace Platform

#endif
