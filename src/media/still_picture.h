// SPDX-License-Identifier: MIT
#pragma once

#include "common/loose_queue.h"

#include <QImage>
#include <QObject>

#include <functional>
#include <memory>

/// Saves pictures as PNG files in a folder of their own among the operator's pictures. The files
/// are written elsewhere than in the caller's thread, whole or not at all, and replace none.
/// Deleting the object waits a second for what is still being written.
class StillPicture : public QObject
{
    Q_OBJECT

public:
    explicit StillPicture(QObject* parent = nullptr);
    ~StillPicture() override;

    /// Where they go, ending in "/".
    static QString folder();
    /// "<source> <date> <time>.png", safe on every system whatever the source is called.
    static QString fileName(const QString& source, const QDateTime& time);

    /// Saves the image that `picture` makes, in another thread, named after `source` and now;
    /// saved() or failed() follows.
    void save(std::function<QImage()> picture, const QString& source);

signals:
    void saved(const QString& path);
    /// `reason` is for the operator.
    void failed(const QString& reason);

private:
    class Unwritten;

    const std::shared_ptr<Unwritten> m_unwritten;
    LooseQueue m_disk;
};
