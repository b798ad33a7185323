// SPDX-License-Identifier: MIT
#pragma once

#include <QCryptographicHash>
#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <memory>

class LooseThread;

/// The digest of a firmware package or an installer, computed on a thread of its own. A file that
/// gives nothing for a while, as on a share that is gone, counts as one that cannot be read.
class PackageDigest : public QObject
{
    Q_OBJECT

public:
    explicit PackageDigest(QString path,
                           QCryptographicHash::Algorithm algorithm = QCryptographicHash::Md5);
    ~PackageDigest() override;

    void start();
    /// How long the file may give nothing, in milliseconds; 20 s unless set.
    void setPatience(int ms) { m_patience.setInterval(ms); }
    QString path() const { return m_path; }
    /// Lower-case hex; empty before ready() and when the file cannot be read.
    QString digest() const { return m_digest; }

signals:
    void ready();

private:
    void finish(const QString& digest);
    void checkProgress();

    const QString m_path;
    const QCryptographicHash::Algorithm m_algorithm;
    QString m_digest;
    QTimer m_patience;
    const std::shared_ptr<std::atomic<int>> m_pieces; // read so far
    int m_seen = 0;                                   // of them, at the last look
    std::unique_ptr<LooseThread> m_thread;
};
