// SPDX-License-Identifier: MIT
#include "benchmarks/playback_films.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>

namespace PlaybackFilms
{
namespace
{

constexpr int longestMade = 60; // seconds

QString film(const QString& name, const QStringList& source)
{
    QDir folder(QDir::tempPath() + "/tarn-hub-films");
    folder.mkpath(".");
    const QString file = folder.filePath(name);
    if (!QFile::exists(file)) {
        const QString part = folder.filePath("part-" + name);
        if (QProcess::execute("ffmpeg",
                              QStringList{"-v", "error", "-y", "-nostdin"} + source << part) != 0 ||
            !QFile::rename(part, file))
            qFatal("ffmpeg did not make %s", qPrintable(file));
    }
    return file;
}

QString testFilm(const QString& name, const QString& source, int seconds, const QString& encoder)
{
    return film(name.arg(seconds), QString("-f lavfi -i testsrc2=%1 -t %2 -c:v %3 -pix_fmt yuv420p")
                                       .arg(source)
                                       .arg(seconds)
                                       .arg(encoder)
                                       .split(' '));
}

} // namespace

QString h264(int seconds)
{
    if (seconds > longestMade)
        return film(QString("h264-1080p60-%1.mp4").arg(seconds),
                    {"-stream_loop", QString::number(seconds / longestMade - 1), "-i",
                     h264(longestMade), "-c", "copy"});
    return testFilm("h264-1080p60-%1.mp4", "size=1920x1080:rate=60", seconds,
                    "libx264 -preset veryfast -b:v 12M -g 60");
}

QString hevc(int seconds)
{
    return testFilm("hevc-1080p30-%1.mp4", "size=1920x1080:rate=30", seconds,
                    "libx265 -preset ultrafast -b:v 8M -g 30 -x265-params log-level=error");
}

QString uhd(int seconds)
{
    return testFilm("hevc-2160p30-%1.mp4", "size=3840x2160:rate=30", seconds,
                    "libx265 -preset ultrafast -b:v 20M -g 30 -x265-params log-level=error");
}

} // namespace PlaybackFilms
