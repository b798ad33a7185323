// SPDX-License-Identifier: MIT
#include "simulator/recorder.h"

#include "simulator/test_picture.h"

#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QTimer>

namespace sim
{
namespace
{
constexpr qint64 shortestMs = 1000; // of pictures
constexpr int lookMs = 50;
constexpr int longestSeconds = 3600;
} // namespace

Recorder::Recorder(QObject* parent) : QObject(parent) {}

Recorder::~Recorder() = default;

void Recorder::start(const QString& path, const QString& title)
{
    m_path = path;
    m_state = State::Starting;
    m_ffmpeg = std::make_unique<ChildProcess>();
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
    connect(m_ffmpeg.get(), &QProcess::readyReadStandardOutput, this, &Recorder::readProgress);
    m_picturesSince = 0;
    startFfmpeg(m_ffmpeg.get(), testPictureArguments(title, true)
                                    << QStringLiteral("-progress") << QStringLiteral("pipe:1")
                                    << QStringLiteral("-stats_period") << QStringLiteral("0.1")
                                    << QStringLiteral("-t") << QString::number(longestSeconds)
                                    << path);
}

void Recorder::finish()
{
    if (m_state != State::Running)
        return;
    m_state = State::Finishing;
    endWhenLongEnough();
}

void Recorder::endWhenLongEnough()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (m_picturesSince != 0 && now - m_picturesSince >= shortestMs)
        m_ffmpeg->terminate();
    else
        QTimer::singleShot(lookMs, m_ffmpeg.get(), [this] { endWhenLongEnough(); });
}

/// On a busy computer FFmpeg needs seconds to its first picture.
void Recorder::readProgress()
{
    static const QRegularExpression somePictures(QStringLiteral("^frame=\\s*[1-9]"),
                                                 QRegularExpression::MultilineOption);
    const QString text = QString::fromLatin1(m_ffmpeg->readAllStandardOutput());
    if (m_picturesSince == 0 && somePictures.match(text).hasMatch())
        m_picturesSince = QDateTime::currentMSecsSinceEpoch();
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
