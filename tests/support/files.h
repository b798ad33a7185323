// SPDX-License-Identifier: MIT
#pragma once

#include <QCryptographicHash>
#include <QDate>
#include <QDir>
#include <QFile>

/// Writes a file as a whole and returns its path.
inline QString writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

/// A program that does what this text says to a shell, as a path. Under Wine that is the host's.
inline QString writeScript(const QString& path, QByteArray text)
{
#ifdef Q_OS_WIN
    const QString disk = qEnvironmentVariable("TARN_HOST_DISK_C");
    writeFile(path + ".sh", text.replace("C:/", disk.toUtf8() + '/').replace("Z:/", "/"));
    if (!QFile::copy(TEST_HOST_TOOL, path + ".exe"))
        qFatal("cannot write %s", qPrintable(path));
    return path + ".exe";
#else
    writeFile(path, "#!/bin/sh\n" + text);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
#endif
}

/// Empty while there is no such file.
inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Whether the script that has told this number, its "$$", is running.
inline bool isScriptRunning(qint64 number)
{
#ifdef Q_OS_WIN
    const QString all = "Z:/proc";
#else
    const QString all = "/proc";
#endif
    const QByteArray state = readFile(QString("%1/%2/stat").arg(all).arg(number));
    // Dead ones wait to be collected.
    return !state.isEmpty() && !state.contains(") Z ");
}

inline QStringList linesOf(const QString& path)
{
    return QString::fromUtf8(readFile(path)).split('\n', Qt::SkipEmptyParts);
}

inline QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

inline QString md5Of(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex();
}

/// A firmware package of bytes that look random.
inline QString writePackage(const QString& path, int size)
{
    QByteArray content(size, Qt::Uninitialized);
    quint32 seed = 1;
    for (char& c : content) {
        seed = seed * 1664525u + 1013904223u;
        c = char(seed >> 24);
    }
    return writeFile(path, content);
}

/// Today's log of `key` below the folder that APPDATA names.
inline QString logFile(const QString& key, const QString& ending = "_tarn_hub.txt")
{
    return QString(qEnvironmentVariable("APPDATA")).replace('\\', '/') + "/Tarn Hub/log/" +
           QDate::currentDate().toString("yyyy-MM-dd") + "---" + key + ending;
}
