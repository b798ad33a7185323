// SPDX-License-Identifier: MIT
#pragma once

#include <QIODevice>
#include <QString>
#include <QThread>

/// One log job: appends one record to its key's file of the day, then the thread is free again.
/// Fields may be set only while the thread is not running.
class operatelog_Threads : public QThread
{
public:
    operatelog_Threads();

    QString key;
    QString text;

protected:
    void run() override;
};

/// Queues one record for the log file of `key` (a box address, or "http-" + host) and returns at
/// once. When all writers are busy the record goes into the key's overflow file instead. What is
/// over the limits of a log is left out, and that is said in it.
/// Called on one thread only, the GUI thread.
void writeLog(const QString& key, const QString& line);

/// Waits at most `ms` until all records are in their files; false when a disk is slower.
bool flushLog(int ms);

/// `text` as one line of a log: what others sent can neither begin a record of its own nor fill
/// the disk. Of what is longer than Limits::LogRecordChars the beginning is left, and its length.
QString logClip(const QString& text);

/// The line of a record: "[time][event][file:line:function][thread name]", the event clipped.
QString logLine(const QString& event, const char* file, int line, const QString& function);

/// Opens `path` for writing in `mode` (Append for logs) and writes `text` as UTF-8, with a line end
/// when appending; a new file is readable by its owner only. False, without a message, when it
/// cannot be opened, or written whole: then it stays as it was.
bool appendToFile(const QString& path, const QString& text, QIODevice::OpenMode mode);
