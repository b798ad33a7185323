// SPDX-License-Identifier: MIT
#include "simulator/sample_clip.h"

#include "simulator/child_process.h"
#include "simulator/test_picture.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <mutex>

namespace sim
{

QString sampleClip(const QString& name)
{
    static std::mutex mutex;
    static QTemporaryDir folder; // guarded by mutex
    const bool isMov = QFileInfo(name).suffix().toLower() == QLatin1String("mov");
    const std::lock_guard<std::mutex> lock(mutex);
    const QString path =
        folder.filePath(isMov ? QStringLiteral("sample.mov") : QStringLiteral("sample.mp4"));
    if (QFileInfo::exists(path))
        return path;
    const QString unfinished =
        folder.filePath(QStringLiteral("unfinished.") + QFileInfo(path).suffix());
    ChildProcess ffmpeg;
    startFfmpeg(&ffmpeg, testPictureArguments(QStringLiteral("sample"), false)
                             << QStringLiteral("-t") << QStringLiteral("10") << unfinished);
    const bool done =
        ffmpeg.waitForFinished(30000) && ffmpeg.exitCode() == 0 && QFile::rename(unfinished, path);
    return done ? path : QString();
}

void makeSampleClips()
{
    (void)sampleClip(QStringLiteral("film.mp4"));
    (void)sampleClip(QStringLiteral("film.mov"));
}

} // namespace sim
