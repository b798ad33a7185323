// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

class QThread;

/// What a file has to be, in lower-case hex; what is empty does not matter.
struct FileDigests {
    QString md5;
    QString sha256;
};

/// Fetches one file from a web server, on a thread of its own: neither the network nor the disk
/// holds up whoever started it. A file of that name is there when it is whole, or not at all.
///
/// Certificates are checked and redirections not followed. Deleting the object gives the download
/// up and ends its thread, which takes milliseconds.
class SparkDownload : public QObject
{
    Q_OBJECT

public:
    /// More than this, in bytes, is no package of ours: such a download is given up.
    static constexpr qint64 SizeLimit = 4LL * 1024 * 1024 * 1024;
    /// This much of the disk, in bytes, a download leaves free.
    static constexpr qint64 DiskReserve = 64LL * 1024 * 1024;

    /// `url` is already encoded; `folder` exists and ends in "/".
    SparkDownload(QString url, QString folder, QObject* parent = nullptr);
    ~SparkDownload() override;

    /// Another limit than SizeLimit; before the start.
    void setSizeLimit(qint64 bytes) { m_sizeLimit = bytes; }

    /// Saves under the first free name made from the last part of the address. Call one of the two
    /// starts, once.
    void start();
    /// Saves under the name that the server offers, which must be `onlyName` unless that is empty,
    /// what has these digests. A file already there with them is used as it is, another one is
    /// replaced.
    void startChecked(const FileDigests& digests, const QString& onlyName = {});
    /// The same under `name`, whatever the server calls it.
    void startAs(const QString& name, const FileDigests& digests);

    /// Of the file, once it has finished().
    QString sha256() const { return m_sha256; }

signals:
    /// `path` is the file, empty after a failure; the reason is in the debug stream.
    void finished(const QString& path);

private:
    void run(const std::function<QString()>& work);
    QString fetch();
    QString fetchChecked(const FileDigests& digests, const QString& onlyName);
    QString obtain(const QString& name, const FileDigests& digests);
    bool isAlready(const QString& path, const FileDigests& digests);
    bool fetchInto(const QString& path, const FileDigests& digests);
    qint64 longestFile() const;

    const QString m_url;
    const QString m_folder;
    qint64 m_sizeLimit = SizeLimit;
    QString m_sha256; ///< written before the thread ends
    std::atomic<bool> m_stop{false};
    std::unique_ptr<QThread> m_thread;
};
