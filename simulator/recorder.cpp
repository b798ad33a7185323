// SPDX-License-Identifier: MIT
#include "simulator/recorder.h"

#include <QDateTime>
#include <QFile>
#include <QTimer>

namespace sim
{
namespace
{
constexpr qint64 shortestMs = 1000;
constexpr int longestSeconds = 3600;
} // namespace

Recorder::Recorder(QObject* parent) : QObject(parent) {}

Recorder::~Recorder() = default;

void Recorder::start(const QString& path, const QString& title)
{
    m_path = path;
    m_state = State::Starting;
    m_ffmpeg = std::make_unique<FfmpegProcess>();
    connect(m_ffmpeg.get(), &QProcess::started, this, [this] {
        m_startedAt = QDateTime::currentMSecsSinceEpoch();
        m_state = State::Running;
    });
    connect(m_ffmpeg.get(), QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &Recorder::ended);
    connect(m_ffmpeg.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            conclude(false);
    });
    m_ffmpeg->startWith(testPictureArguments(title, true)
                        << QStringLiteral("-t") << QString::number(longestSeconds) << path);
}

void Recorder::finish()
{
    if (m_state != State::Running)
        return;
    m_state = State::Finishing;
    const qint64 early = qMax<qint64>(0, shortestMs - elapsedMs());
    QTimer::singleShot(int(early), m_ffmpeg.get(), [this] { m_ffmpeg->terminate(); });
}

void Recorder::abort()
{
    if (!m_ffmpeg)
        return;
    m_ffmpeg->disconnect(this);
    m_ffmpeg.reset();
    m_startedAt = 0;
    m_state = State::Idle;
    QFile::remove(m_path);
}

Recorder::State Recorder::state() const
{
    return m_state;
}

qint64 Recorder::elapsedMs() const
{
    const qint64 startedAt = m_startedAt;
    return startedAt == 0 ? 0 : QDateTime::currentMSecsSinceEpoch() - startedAt;
}

void Recorder::ended(int exitCode, QProcess::ExitStatus status)
{
    // FFmpeg answers the signal that ends it in good order with 255.
    const bool good = m_state == State::Finishing && status == QProcess::NormalExit &&
                      (exitCode == 0 || exitCode == 255) && QFile(m_path).size() > 0;
    conclude(good);
}

void Recorder::conclude(bool good)
{
    m_startedAt = 0;
    emit over(good);
    m_state = good ? State::Idle : State::Failed;
}

} // namespace sim
