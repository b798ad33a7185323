// SPDX-License-Identifier: MIT
#include "media/ffmpeg_thread.h"

#include "crash/crash_handler.h"
#include "media/ffmpeg_session.h"
#include "media/playback.h"

extern "C" {
#include <libavutil/time.h>
}

namespace
{

/// How long the lag of the last picture says something.
constexpr qint64 lagKnownMs = 1000;
/// How often a source that has played may be denied: a box that has just started may not know its
/// recordings yet, and one that goes on like that has deleted it.
constexpr int mostRefusals = 6;

} // namespace

FFmpegThread::FFmpegThread(QObject* parent) : QThread(parent)
{
    setObjectName(QStringLiteral("FFmpegThread"));
    FFmpegSession::setUpLibrary();
}

FFmpegThread::~FFmpegThread()
{
    requestStop();
    wait();
    // run() has let go of everything before it last held this.
    m_stop.clear([] {});
}

void FFmpegThread::setUrl(const QString& url)
{
    m_url = url;
}

void FFmpegThread::play()
{
    setNeedInit();
    start(InheritPriority);
}

void FFmpegThread::stop()
{
    requestStop();
    emit playstatus(Stopped, m_url);
}

qint64 FFmpegThread::silentMs() const
{
    const qint64 since = m_state.waitingSince;
    return since == 0 ? 0 : (av_gettime_relative() - since) / 1000;
}

PictureFigures FFmpegThread::figures() const
{
    PictureFigures figures = m_state.meter.figures(av_gettime_relative());
    // Without a picture nothing is behind.
    const qint64 lag = silentMs() < lagKnownMs ? m_state.lagUs.load() : -1;
    figures.lagMs = lag < 0 ? -1 : int(lag / 1000);
    figures.dropped = m_state.dropped;
    figures.reconnections = m_state.reconnections;
    return figures;
}

bool FFmpegThread::init()
{
    m_playback = std::make_unique<Playback>(
        m_state, m_stop, [this](const QImage& image) { emit receiveImage(image); });
    if (!m_playback->open(m_url, m_origin, m_screen))
        return false;
    if (m_position)
        m_playback->goOnBehind(*m_position);
    return true;
}

void FFmpegThread::free()
{
    m_playback.reset();
    writePlayerLine(QStringLiteral("close ffmpeg ok"));
}

void FFmpegThread::run()
{
    CrashHandler::coverThread();
    m_startedAt = av_gettime_relative();
    bool goesOn = true;
    while (goesOn && !m_stop.isRequested()) {
        if (m_needInit) {
            goesOn = openNow() || waitForNextTry();
            continue;
        }
        const Playback::Outcome outcome = m_playback->step();
        goesOn = outcome != Playback::Outcome::Over;
        if (outcome == Playback::Outcome::Broken)
            noteBreak();
    }
    if (!goesOn)
        tell(OpenFailed);
    free();
    writePlayerLine(QStringLiteral("stop ffmpeg thread"));
    m_stop.clear([this] {
        m_state.waitingSince = 0;
        m_needInit = false;
    });
}

bool FFmpegThread::openNow()
{
    if (!init())
        return false;
    m_needInit = false;
    m_openedAt = av_gettime_relative();
    m_refusals = 0;
    if (m_hasPlayed)
        ++m_state.reconnections;
    m_hasPlayed = true;
    tell(Playing);
    return true;
}

/// The source is gone: from now on it is opened again.
void FFmpegThread::noteBreak()
{
    m_retry.noteBreak(av_gettime_relative() - m_openedAt);
    m_position = m_playback->position();
    m_needInit = true;
    free();
    ++m_state.tries;
    m_stop.rest(m_retry.nextPause());
}

/// After a try that has failed; false when there is none that could do better.
bool FFmpegThread::waitForNextTry()
{
    m_refusals = m_playback->mayComeLater() ? 0 : m_refusals + 1;
    if (m_playback->isOverLimit() || m_refusals > (m_hasPlayed ? mostRefusals : 0))
        return false;
    if (!m_hasPlayed)
        tell(OpenFailed);
    free();
    if (m_state.waitingSince == 0)
        m_state.waitingSince = m_startedAt;
    ++m_state.tries;
    m_stop.rest(m_retry.nextPause());
    return true;
}

/// What was stopped has not failed, and does not begin to play. Nobody is told the same twice.
void FFmpegThread::tell(Status status)
{
    m_stop.unlessRequested([&] {
        if (m_told == status)
            return;
        m_told = status;
        emit playstatus(status, m_url);
    });
}
