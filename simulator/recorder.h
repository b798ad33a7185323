// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/child_process.h"

#include <QObject>

#include <atomic>
#include <memory>

namespace sim
{

/// Records the test picture into a file, in real time. Lives in the simulator's thread; state()
/// and elapsedMs() may be asked from any thread.
class Recorder : public QObject
{
    Q_OBJECT

public:
    enum class State { Idle, Starting, Running, Finishing, Failed };

    explicit Recorder(QObject* parent = nullptr);
    ~Recorder() override;

    /// Begins; state() goes to Starting, then to Running or Failed.
    void start(const QString& path, const QString& title);
    /// Completes the file; state() goes to Finishing, then to Idle (the file is good) or Failed.
    /// A recording has at least about a second of pictures: sooner FFmpeg has no file to finish.
    void finish();
    /// Ends at once, as when the power fails; the file is lost.
    void abort();

    State state() const;
    qint64 elapsedMs() const; ///< since the start, 0 when nothing is being recorded

signals:
    /// The recording is over, not by abort(); `good`: the file is complete. Comes before state()
    /// changes.
    void over(bool good);

private:
    void conclude(bool good);
    void ended(int exitCode, QProcess::ExitStatus status);
    void readProgress();
    void endWhenLongEnough();

    std::unique_ptr<ChildProcess> m_ffmpeg;
    QString m_path;
    std::atomic<State> m_state{State::Idle};
    std::atomic<qint64> m_startedAt{0}; // ms since the epoch, 0: not recording
    qint64 m_picturesSince = 0;         // ms since the epoch, 0: none yet
};

} // namespace sim
