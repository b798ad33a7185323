// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/files.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

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

    /// What `ffmpeg ARGUMENTS` writes, e.g. the pictures of a film as plain numbers.
    QByteArray output(const QString& arguments) const { return run(arguments, "pipe:1"); }

    /// Four seconds that can be sent as they come.
    QString live() const
    {
        return make("live.ts", "-f lavfi -i testsrc2=size=320x180:rate=25 -t 4 -c:v libx264 "
                               "-tune zerolatency");
    }

private:
    static QByteArray run(const QString& arguments, const QString& output)
    {
        QProcess ffmpeg;
        ffmpeg.start("ffmpeg", ("-v error -nostdin " + arguments).split(' ') << output);
        if (!ffmpeg.waitForFinished(60000) || ffmpeg.exitCode() != 0)
            qFatal("ffmpeg %s: %s", qPrintable(arguments),
                   ffmpeg.readAllStandardError().constData());
        return ffmpeg.readAllStandardOutput();
    }

    QTemporaryDir m_folder;
};
