// SPDX-License-Identifier: MIT
#include "simulator/test_picture.h"

namespace sim
{

QStringList testPictureArguments(const QString& title, bool realTime)
{
    QStringList arguments = {QStringLiteral("-hide_banner"), QStringLiteral("-nostdin"),
                             QStringLiteral("-loglevel"), QStringLiteral("error"),
                             QStringLiteral("-y")};
    const auto input = [&arguments, realTime](const QString& source) {
        if (realTime)
            arguments << QStringLiteral("-re");
        arguments << QStringLiteral("-f") << QStringLiteral("lavfi") << QStringLiteral("-i")
                  << source;
    };
    input(QStringLiteral("testsrc2=size=320x180:rate=25"));
    input(QStringLiteral("sine=frequency=440:sample_rate=48000"));
    const QString label = QStringLiteral("drawtext=fontcolor=white:box=1:boxcolor=black@0.6:"
                                         "fontsize=18:x=8:y=%1:text='%2'");
    arguments << QStringLiteral("-vf")
              << label.arg(QStringLiteral("h-44"), title) + QLatin1Char(',') +
                     label.arg(QStringLiteral("h-22"), QStringLiteral("%{localtime}"));
    // A key frame each second, so that a viewer who comes late soon sees something.
    arguments << QStringLiteral("-c:v libx264 -preset ultrafast -tune zerolatency -g 25 "
                                "-pix_fmt yuv420p -threads 1 -c:a aac -b:a 64k")
                     .split(QLatin1Char(' '));
    return arguments;
}

void startFfmpeg(QProcess* process, const QStringList& arguments)
{
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(QStringLiteral("ffmpeg"), arguments, QIODevice::ReadOnly);
}

} // namespace sim
