// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/files.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// A small moving picture, as arguments of FFmpeg.
inline const QString Small = "-f lavfi -i testsrc2=size=320x180:rate=25";

/// Small films made by FFmpeg's own tool, kept until the test ends.
class Clips
{
public:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    /// What `ffmpeg ARGUMENTS file` makes, as a path; `arguments` are separated by blanks. Made
    /// once per name.
    QString make(const QString& name, const QString& arguments) const
    {
        const QString file = path(name);
        if (!QFile::exists(file))
            run("-y " + arguments, file);
        return file;
    }

    /// One picture of a film, after that filter of FFmpeg, as bytes: blue, green, red and nothing
    /// for each pixel.
    static QByteArray picture(const QString& film, int number, const QString& filter = "null")
    {
        const QString select =
            QString(" -vf select=eq(n\\,%1),%2 -frames:v 1").arg(number).arg(filter);
        return run("-i " + film + select + " -f rawvideo -pix_fmt bgra", "pipe:1");
    }

    /// Two seconds with B frames, which a decoder holds back until it knows that nothing follows.
    QString two() const { return make("two.mp4", Small + " -t 2 -c:v libx264 -bf 3"); }

    /// Four seconds that can be sent as they come.
    QString live() const { return make("live.ts", Small + " -t 4 -c:v libx264 -tune zerolatency"); }

private:
    static QByteArray run(const QString& arguments, const QString& output)
    {
        QProcess ffmpeg;
        ffmpeg.start("ffmpeg", ("-v error -nostdin " + arguments).split(' ', Qt::SkipEmptyParts)
                                   << output);
        if (!ffmpeg.waitForFinished(60000) || ffmpeg.exitCode() != 0)
            qFatal("ffmpeg %s: %s", qPrintable(arguments),
                   ffmpeg.readAllStandardError().constData());
        return ffmpeg.readAllStandardOutput();
    }

    QTemporaryDir m_folder;
};
