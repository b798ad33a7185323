// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/child_process.h"

#include <QObject>
#include <QTimer>

#include <memory>

namespace sim
{

/// Serves a live stream over SRT, to one caller after the other: FFmpeg listens, and again when a
/// caller has gone. Lives in the simulator's thread.
class SrtListener : public QObject
{
    Q_OBJECT

public:
    explicit SrtListener(QObject* parent = nullptr);

    /// Passes what `source` plays on to who calls srt://<address>:<port>.
    void start(const QString& source, const QString& address, quint16 port);
    void stop();

private:
    void listen();

    QStringList m_arguments;
    std::unique_ptr<ChildProcess> m_ffmpeg;
    QTimer m_again;
};

} // namespace sim
