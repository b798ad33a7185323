// SPDX-License-Identifier: MIT
#include "media/ffmpeg_thread.h"

#include "crash/crash_handler.h"
#include "media/ffmpeg_session.h"

extern "C" {
#include <libavutil/error.h>
#include <libavutil/frame.h>
#include <libavutil/time.h>
}

#include <chrono>

namespace
{

/// How often a source without data is asked again, at first and later on: each time may be a
/// connection of its own.
constexpr qint64 retryUs = 10000;
constexpr qint64 lateRetryUs = 40000;
/// How long a source without data may still be about to go on.
constexpr qint64 endUs = 500000;
/// How long a late file's picture waits for room, and how often it looks for it.
constexpr qint64 roomUs = 100000;
constexpr qint64 roomPollUs = 1000;

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
    const std::lock_guard<std::mutex> lock(m_restMutex);
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

void FFmpegThread::requestStop()
{
    {
        const std::lock_guard<std::mutex> lock(m_restMutex);
        m_stopPlay = true;
    }
    m_wake.notify_all();
}

qint64 FFmpegThread::silentMs() const
{
    const qint64 since = m_waitingSince;
    return since == 0 ? 0 : (av_gettime_relative() - since) / 1000;
}

PictureFigures FFmpegThread::figures() const
{
    PictureFigures figures = m_meter.figures(av_gettime_relative());
    figures.dropped = m_dropped;
    return figures;
}

bool FFmpegThread::init()
{
    m_session = std::make_unique<FFmpegSession>([this] { return m_stopPlay.load(); });
    m_session->setScreen(m_screen);
    m_converter = std::make_unique<FrameConverter>();
    if (!m_session->open(m_url, m_origin))
        return false;
    m_pacing.setLive(!m_session->hasEnd());
    m_meter.setSource(m_session->figures(), m_session->soundChannels());
    return true;
}

void FFmpegThread::free()
{
    m_converter.reset();
    m_session.reset();
    writePlayerLine(QStringLiteral("close ffmpeg ok"));
}

void FFmpegThread::run()
{
    CrashHandler::coverThread();
    m_pacing.start(av_gettime_relative());
    while (!m_stopPlay) {
        if (!m_needInit && !m_session->isOverLimit()) {
            step();
        } else if (m_needInit && init()) {
            m_needInit = false;
            tell(Playing);
        } else {
            tell(OpenFailed);
            break;
        }
    }
    free();
    writePlayerLine(QStringLiteral("stop ffmpeg thread"));
    const std::lock_guard<std::mutex> lock(m_restMutex);
    m_waitingSince = 0;
    m_stopPlay = false;
    m_needInit = false;
}

/// What was stopped has not failed, and does not begin to play.
void FFmpegThread::tell(Status status)
{
    const std::lock_guard<std::mutex> lock(m_restMutex);
    if (!m_stopPlay)
        emit playstatus(status, m_url);
}

/// Reads one packet and shows the picture that it completes.
void FFmpegThread::step()
{
    if (m_waitingSince == 0)
        m_waitingSince = av_gettime_relative();
    showPending();
    const int result = m_session->read();
    if (result < 0) {
        waitForData(result);
        return;
    }
    m_noDataSince = 0;
    m_atEnd = false;
    m_session->resume();
    measure();
    if (!m_session->isVideo())
        return;
    if (m_session->decode() < 0)
        return;
    if (m_isPending)
        ++m_dropped;
    showPicture();
    waitUntilDue();
}

void FFmpegThread::measure()
{
    const qint64 now = av_gettime_relative();
    m_meter.addPacket(now, m_session->packetBytes());
    if (m_isSoundMeasured && m_session->isSound())
        m_session->decodeSound([&](const AVFrame& frame) { m_meter.addSound(now, frame); });
}

void FFmpegThread::showPicture()
{
    QImage image;
    const FrameConverter::Result result =
        m_converter->convert(m_session->frame(), m_session->shape(), &image);
    m_isPending = result == FrameConverter::Result::Busy;
    // That nobody takes a picture is not the source's fault.
    if (result != FrameConverter::Result::Failed)
        m_waitingSince = 0;
    if (result == FrameConverter::Result::Done) {
        m_meter.addPicture(av_gettime_relative(),
                           {m_session->frame().width, m_session->frame().height});
        emit receiveImage(image);
    }
}

void FFmpegThread::showPending()
{
    if (m_isPending)
        showPicture();
}

void FFmpegThread::waitUntilDue()
{
    const qint64 now = av_gettime_relative();
    const std::optional<qint64> stamp = m_session->stampUs();
    const qint64 due = now + (stamp ? m_pacing.waitAfter(*stamp, now) : 0);
    // A picture without room may find some until the next one is due. A file that is late loses
    // pictures only to a receiver that does not take them; a live source never becomes late here.
    const qint64 limit = due == now && m_session->hasEnd() ? now + roomUs : due;
    while (m_isPending && !m_stopPlay && av_gettime_relative() < limit) {
        rest(roomPollUs);
        showPending();
    }
    rest(due - av_gettime_relative());
}

/// A failed read ends nothing: a file may grow, a stream may come back.
void FFmpegThread::waitForData(int result)
{
    const qint64 now = av_gettime_relative();
    if (m_noDataSince == 0)
        m_noDataSince = now;
    if (result == AVERROR_EOF && !m_atEnd && now - m_noDataSince > endUs && m_session->hasEnd())
        showHeldBack();
    rest(now - m_noDataSince > endUs ? lateRetryUs : retryUs);
}

/// The pictures that the decoder keeps back for reordering, when no more packets follow.
void FFmpegThread::showHeldBack()
{
    while (!m_stopPlay && !m_isPending && !m_atEnd) {
        if (m_session->drain() >= 0)
            showPicture();
        else
            m_atEnd = true;
    }
}

void FFmpegThread::rest(qint64 microseconds)
{
    if (microseconds <= 0)
        return;
    std::unique_lock<std::mutex> lock(m_restMutex);
    m_wake.wait_for(lock, std::chrono::microseconds(microseconds),
                    [this] { return m_stopPlay.load(); });
}
