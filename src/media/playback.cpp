// SPDX-License-Identifier: MIT
#include "media/playback.h"

#include "media/ffmpeg_session.h"
#include "media/live_reader.h"
#include "media/playback_state.h"
#include "media/stop_signal.h"

extern "C" {
#include <libavcodec/packet.h>
#include <libavutil/error.h>
#include <libavutil/frame.h>
#include <libavutil/time.h>
}

#include <algorithm>

namespace
{

/// How often a film without data is asked again, at first and later on.
constexpr qint64 retryUs = 10000;
constexpr qint64 lateRetryUs = 40000;
/// How long a film without data may still be about to go on, unless its header says that this was
/// all: so late is the picture that a decoder holds back at the end.
constexpr qint64 endUs = 150000;
/// How long the pictures at the end are shown at most, each.
constexpr qint64 longestPeriodUs = 1000000;
/// How long a late film's picture waits for room, and how often it looks for it.
constexpr qint64 roomUs = 100000;
constexpr qint64 roomPollUs = 1000;

/// How long a live source's next packet is waited for at a time.
constexpr qint64 packetWaitUs = 20000;
/// How often it is looked whether a picture that waits for its turn has become late.
constexpr qint64 turnPollUs = 10000;
/// From this lag on a live source's pictures that no other one needs are not decoded, and from that
/// one on it goes on with its newest key picture.
constexpr qint64 hurryUs = 200000;
constexpr qint64 skipUs = 500000;
/// Something moves all the same, that often, while a source is caught up with.
constexpr qint64 catchUpPictureUs = 100000;
/// Packets whose arrivals are remembered until their pictures come: more than a decoder holds back.
constexpr size_t mostArrivals = 64;
/// So much before the place where a film goes on it is read again: not every format knows where its
/// key pictures are.
constexpr qint64 againUs = 3000000;
/// A live source without packets of the picture, or of which none can be shown any more, is opened
/// anew: it may have changed its codec. The first picture may have to wait for a key picture.
constexpr qint64 silenceUs = 4000000;
constexpr qint64 firstPictureUs = 15000000;

} // namespace

Playback::Playback(PlaybackState& state, StopSignal& stop, Show show)
    : m_state(state), m_stop(stop), m_show(std::move(show))
{
}

Playback::~Playback() = default;

bool Playback::openSession(const QString& url, MediaOptions::Origin origin, const QSize& screen)
{
    const bool isLongLook = m_session && m_session->wantsLongLook();
    m_session = std::make_unique<FFmpegSession>([this] { return m_stop.isRequested(); });
    m_session->setScreen(screen);
    if (isLongLook)
        m_session->setLongLook();
    return m_session->open(url, origin);
}

bool Playback::open(const QString& url, MediaOptions::Origin origin, const QSize& screen)
{
    m_pacing.start(av_gettime_relative());
    m_packet.reset(av_packet_alloc());
    const bool isOpen = openSession(url, origin, screen) ||
                        (m_session->wantsLongLook() && openSession(url, origin, screen));
    if (!m_packet || !isOpen) {
        m_isOverLimit = m_session->isOverLimit();
        return false;
    }
    m_packetAt = m_shownAt = av_gettime_relative();
    m_state.lagUs = -1;
    m_state.meter.setSource(m_session->figures(), m_session->soundChannels());
    if (m_session->isLive())
        m_reader = std::make_unique<LiveReader>(
            *m_session, [this](const AVPacket& packet) { measure(packet); });
    return true;
}

/// Whoever reads calls it.
void Playback::measure(const AVPacket& packet)
{
    const qint64 now = av_gettime_relative();
    m_state.meter.addPacket(now, packet.size);
    if (m_state.isSoundMeasured && m_session->isSound(packet))
        m_session->decodeSound(packet,
                               [&](const AVFrame& frame) { m_state.meter.addSound(now, frame); });
}

bool Playback::mayComeLater()
{
    return !m_session || m_session->mayComeLater();
}

void Playback::goOnBehind(qint64 position)
{
    if (!m_session->hasEnd())
        return;
    // Where it cannot seek, it goes on from where opening has left it.
    m_session->seek(position - againUs);
    m_behind = position;
    m_position = position;
}

Playback::Outcome Playback::step()
{
    if (m_state.waitingSince == 0)
        m_state.waitingSince = av_gettime_relative();
    showPending();
    followArea();
    return m_reader ? stepLive() : stepFilm();
}

Playback::Outcome Playback::stepFilm()
{
    m_isOverLimit = m_session->isOverLimit();
    if (m_isOverLimit)
        return Outcome::Over;
    const int result = m_session->read(*m_packet);
    if (result < 0)
        return waitForData(result);
    measure(*m_packet);
    PictureDecoder& decoder = m_session->pictures();
    m_noDataSince = 0;
    m_state.isAtEnd = false;
    decoder.resume();
    bool isFull = false;
    // The decoder is at work while the picture in hand is still to be seen.
    if (!m_session->isVideo(*m_packet) || !decoder.send(*m_packet, &isFull) || !waitUntilDue())
        return Outcome::GoesOn;
    const int received = decoder.take();
    if (isFull)
        decoder.send(*m_packet, &isFull);
    if (received >= 0)
        showFilmPicture(*m_packet);
    return Outcome::GoesOn;
}

void Playback::showFilmPicture(const AVPacket& packet)
{
    const PictureDecoder& decoder = m_session->pictures();
    const std::optional<qint64> stamp = decoder.stampUs();
    if (m_behind) {
        if (stamp && *stamp <= *m_behind)
            return;
        m_behind.reset();
        m_pacing.start(av_gettime_relative());
    }
    if (stamp)
        m_position = stamp;
    if (m_isPending)
        ++m_state.dropped;
    show();
    const std::optional<qint64> decoded = decoder.stampUs(packet);
    m_seenFrom = av_gettime_relative();
    m_seenUntil = m_seenFrom + (decoded ? m_pacing.waitAfter(*decoded, m_seenFrom) : 0);
}

Playback::Outcome Playback::stepLive()
{
    const MediaPacket packet = m_reader->take(packetWaitUs);
    m_state.dropped += m_reader->takeLost();
    if (!packet && m_reader->hasEnded()) {
        m_isOverLimit = m_reader->isOverLimit();
        return m_isOverLimit ? Outcome::Over : Outcome::Broken;
    }
    if (!packet)
        return lookForSilence();
    m_packetAt = av_gettime_relative();
    PictureDecoder& decoder = m_session->pictures();
    const std::optional<qint64> stamp = decoder.stampUs(*packet);
    const std::optional<qint64> newest = m_reader->newestUs();
    noteArrival(*packet);
    if (stamp && newest && catchUp(*newest - *stamp))
        return Outcome::GoesOn;
    bool isFull = true;
    while (isFull && decoder.send(*packet, &isFull)) {
        bool isTaken = false;
        for (; decoder.take() >= 0; isTaken = true)
            showLivePicture(*packet);
        if (isFull && !isTaken)
            break;
    }
    return lookForSilence();
}

/// Lets the decoder leave out what a late picture allows; whether the packet in hand is one of
/// those that are left out.
bool Playback::catchUp(qint64 lag)
{
    PictureDecoder& decoder = m_session->pictures();
    decoder.setHurried(lag > hurryUs);
    const int skipped = lag > skipUs && m_hasShown ? m_reader->skipToNewestKey() : 0;
    if (skipped == 0)
        return false;
    m_state.dropped += skipped + 1;
    decoder.flush();
    return true;
}

void Playback::showLivePicture(const AVPacket& packet)
{
    const PictureDecoder& decoder = m_session->pictures();
    std::optional<qint64> stamp = decoder.stampUs();
    if (!stamp)
        stamp = decoder.stampUs(packet);
    const qint64 newest = m_reader->newestUs().value_or(0);
    if (m_isPending)
        ++m_state.dropped;
    m_isPending = false;
    if (stamp && isLate(newest - *stamp)) {
        ++m_state.dropped;
        return;
    }
    if (stamp && m_hasShown)
        waitForTurn(*stamp, newest);
    show();
    m_state.lagUs = stamp ? qMax<qint64>(0, m_reader->newestUs().value_or(0) - *stamp) : -1;
}

void Playback::noteArrival(const AVPacket& packet)
{
    if (const std::optional<qint64> seen = m_session->pictures().seenUs(packet))
        m_arrivals.emplace_back(*seen, m_reader->arrival());
    if (m_arrivals.size() > mostArrivals)
        m_arrivals.pop_front();
}

/// When that picture has arrived; now, where nothing says so.
qint64 Playback::arrivalOf(qint64 stamp, qint64 now) const
{
    const auto found = std::find_if(m_arrivals.rbegin(), m_arrivals.rend(),
                                    [stamp](const auto& each) { return each.first == stamp; });
    return found == m_arrivals.rend() ? now : found->second;
}

/// Not a moment longer than until newer ones have made it late.
void Playback::waitForTurn(qint64 stamp, qint64 newest)
{
    const qint64 now = av_gettime_relative();
    const qint64 due = now + m_livePacing.waitBefore(stamp, newest, arrivalOf(stamp, now), now);
    for (;;) {
        const qint64 rest = due - av_gettime_relative();
        if (rest <= 0 || m_stop.isRequested() ||
            m_reader->newestUs().value_or(newest) - stamp >= LivePacing::LateUs)
            return;
        m_stop.rest(qMin(rest, turnPollUs));
    }
}

/// Whether a picture that far behind is left out, for a newer one that is about to be decoded.
bool Playback::isLate(qint64 lag) const
{
    return m_hasShown && lag >= LivePacing::LateUs && !m_reader->isEmpty() &&
           av_gettime_relative() - m_shownAt < catchUpPictureUs;
}

Playback::Outcome Playback::lookForSilence()
{
    const qint64 now = av_gettime_relative();
    const bool isSilent =
        now - m_packetAt > silenceUs || now - m_shownAt > (m_hasShown ? silenceUs : firstPictureUs);
    return isSilent ? Outcome::Broken : Outcome::GoesOn;
}

/// Makes an image of the picture in hand; there is none if none is free.
bool Playback::convert(QImage* image)
{
    m_area = m_state.area();
    const PictureDecoder& decoder = m_session->pictures();
    const FrameConverter::Result result =
        m_converter.convert(decoder.frame(), decoder.shape(), m_area, image);
    m_isPending = result == FrameConverter::Result::Busy;
    return result != FrameConverter::Result::Failed;
}

void Playback::handOut(const QImage& image)
{
    if (image.isNull())
        return;
    const PictureDecoder& decoder = m_session->pictures();
    m_state.setShown(ShownPicture(decoder.frame(), decoder.shape()));
    m_show(image);
}

void Playback::show()
{
    QImage image;
    // That nobody takes a picture is not the source's fault.
    if (!convert(&image))
        return;
    m_hasShown = true;
    m_shownAt = av_gettime_relative();
    const AVFrame& frame = m_session->pictures().frame();
    m_state.meter.addPicture(m_shownAt, {frame.width, frame.height});
    // Whoever gets the picture finds that the source is back.
    m_state.waitingSince = 0;
    m_state.tries = 0;
    handOut(image);
}

void Playback::showAgain()
{
    QImage image;
    if (convert(&image))
        handOut(image);
}

void Playback::showPending()
{
    if (m_isPending)
        showAgain();
}

/// The picture that stands still is as sharp in a larger window.
void Playback::followArea()
{
    if (m_hasShown && !(m_state.area() == m_area))
        showAgain();
}

/// Until a film's next picture is due; false when it is to be shown no more.
bool Playback::waitUntilDue()
{
    // A picture without room may find some until the next one is due. A film that is late loses
    // pictures only to a receiver that does not take them.
    const qint64 limit = m_seenUntil == m_seenFrom ? m_seenFrom + roomUs : m_seenUntil;
    // A picture that is to be seen for long, as in a slide show, is no silence.
    if (m_seenUntil > av_gettime_relative())
        m_state.waitingSince = 0;
    while (m_isPending && !m_stop.isRequested() && av_gettime_relative() < limit) {
        m_stop.rest(roomPollUs);
        showPending();
    }
    m_stop.rest(m_seenUntil - av_gettime_relative());
    return !m_stop.isRequested();
}

/// A failed read ends nothing: a film may grow.
Playback::Outcome Playback::waitForData(int result)
{
    const qint64 now = av_gettime_relative();
    if (m_noDataSince == 0)
        m_noDataSince = now;
    // What has been shown up to its end needs its source no more.
    const bool isGone = m_session->hasEnd() ? m_session->isBroken(result) && !m_state.isAtEnd
                                            : result == AVERROR_EXIT || now - m_noDataSince > endUs;
    if (isGone)
        return Outcome::Broken;
    const bool isOver = now - m_noDataSince > endUs || !m_session->mayGrow();
    if (result == AVERROR_EOF && !m_state.isAtEnd && isOver)
        showHeldBack();
    m_stop.rest(isOver ? lateRetryUs : retryUs);
    return Outcome::GoesOn;
}

/// The pictures that the decoder keeps back, when no more packets follow: at the film's pace.
void Playback::showHeldBack()
{
    PictureDecoder& decoder = m_session->pictures();
    while (!m_state.isAtEnd && waitUntilDue() && !m_isPending) {
        const std::optional<qint64> last = decoder.stampUs();
        m_state.isAtEnd = decoder.drain() < 0;
        const std::optional<qint64> stamp = decoder.stampUs();
        if (m_state.isAtEnd || (m_behind && stamp && *stamp <= *m_behind))
            continue;
        if (stamp)
            m_position = stamp;
        show();
        const qint64 period = last && stamp ? *stamp - *last : 0;
        m_seenFrom = av_gettime_relative();
        m_seenUntil = qMax(m_seenFrom, m_seenUntil + qBound<qint64>(0, period, longestPeriodUs));
    }
}
