// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <memory>

class LooseThread;

/// The MD5 of a firmware package or an installer, computed on a thread of its own. A file that
/// gives nothing for a while, as on a share that is gone, counts as one that cannot be read.
class PackageDigest : public QObject
{
    Q_OBJECT

public:
    explicit PackageDigest(QString path, QObject* parent = nullptr);
    ~PackageDigest() override;

    void start();
    /// How long the file may give nothing, in milliseconds; 20 s unless set.
    void setPatience(int ms) { m_patience.setInterval(ms); }
    QString path() const { return m_path; }
    /// Lower-case hex; empty before ready() and when the file cannot be read.
    QString md5() const { return m_md5; }

signals:
    void ready();

private:
    void finish(const QString& md5);
    void checkProgress();

    const QString m_path;
    QString m_md5;
    QTimer m_patience;
    const std::shared_ptr<std::atomic<int>> m_pieces; // read so far
    int m_seen = 0;                                   // of them, at the last look
    std::unique_ptr<LooseThread> m_thread;
};
