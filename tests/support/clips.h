// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QProcess>
#include <QString>
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

    QByteArray content(const QString& file) const
    {
        QFile source(file);
        if (!source.open(QIODevice::ReadOnly))
            qFatal("cannot read %s", qPrintable(file));
        return source.readAll();
    }

    QString write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(name));
        return file.fileName();
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
