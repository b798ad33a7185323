// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

class QThread;

/// The MD5 of a firmware package or an installer, computed on a thread of its own. Deleting the
/// object ends the thread first.
class PackageDigest : public QObject
{
    Q_OBJECT

public:
    explicit PackageDigest(QString path, QObject* parent = nullptr);
    ~PackageDigest() override;

    void start();
    QString path() const { return m_path; }
    /// Lower-case hex; empty before ready() and when the file cannot be read.
    QString md5() const { return m_md5; }

signals:
    void ready();

private:
    const QString m_path;
    QString m_md5;
    std::atomic<bool> m_stop{false};
    std::unique_ptr<QThread> m_thread;
};
