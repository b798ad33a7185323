// SPDX-License-Identifier: MIT
#pragma once

#include "media/frame_converter.h"
#include "media/media_options.h"
#include "media/media_packet.h"
#include "media/pacing.h"

#include <QImage>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

class FFmpegSession;
class LiveReader;
class PlaybackState;
class StopSignal;

/// One opened source, from its packets to images at the right time: a film at the pace of its
/// stamps, a live source as soon as it is there. Used by one thread.
class Playback
{
public:
    enum class Outcome {
        GoesOn,
        Broken, ///< the source is gone; opened again it may go on
        Over,   ///< it has had more than one source gets
    };
    using Show = std::function<void(const QImage&)>;

    /// `state` and `stop` outlive this; each image goes to `show`.
    Playback(PlaybackState& state, StopSignal& stop, Show show);
    ~Playback();
    Playback(const Playback&) = delete;
    Playback& operator=(const Playback&) = delete;

    /// Opens the source; false, with the reason in the debug stream, when it cannot be played.
    /// Pictures leave out detail that no screen of that size could show.
    bool open(const QString& url, MediaOptions::Origin origin, const QSize& screen);
    /// After open() has failed: whether the same address may have something to show later.
    bool mayComeLater();
    /// Whether it has had more than one source gets, before or after it was open.
    bool isOverLimit() const { return m_isOverLimit; }
    /// The stamp of the picture shown last, in microseconds, when the source has an end.
    std::optional<qint64> position() const { return m_position; }
    /// Goes on behind that picture, if the source has one; before the first step().
    void goOnBehind(qint64 position);

    /// Takes one packet and shows what it completes, once that is due.
    Outcome step();

private:
    bool openSession(const QString& url, MediaOptions::Origin origin, const QSize& screen);
    void measure(const AVPacket& packet);
    Outcome stepFilm();
    Outcome stepLive();
    void showFilmPicture(const AVPacket& packet);
    void showLivePicture(const AVPacket& packet);
    bool catchUp(qint64 lag);
    void waitForTurn(qint64 stamp, qint64 newest);
    void noteArrival(const AVPacket& packet);
    qint64 arrivalOf(qint64 stamp, qint64 now) const;
    bool isLate(qint64 lag) const;
    Outcome lookForSilence();
    bool convert(QImage* image);
    void handOut(const QImage& image);
    void showAgain();
    void show();
    void showPending();
    void followArea();
    bool waitUntilDue();
    Outcome waitForData(int result);
    void showHeldBack();

    PlaybackState& m_state;
    StopSignal& m_stop;
    const Show m_show;
    std::unique_ptr<FFmpegSession> m_session;
    std::unique_ptr<LiveReader> m_reader; // of a live source; ends before the session
    FrameConverter m_converter;
    ShownArea m_area; // in which the picture was converted last
    MediaPacket m_packet;
    Pacing m_pacing;
    LivePacing m_livePacing;
    bool m_isOverLimit = false;
    bool m_isPending = false; // the picture in hand has not found a free image yet
    bool m_hasShown = false;
    qint64 m_shownAt = 0;                             // when the last one was shown
    std::deque<std::pair<qint64, qint64>> m_arrivals; // of pictures: stamp and time
    qint64 m_packetAt = 0;                            // when the last packet of the picture came
    qint64 m_seenFrom = 0;                            // when a film's last picture was shown
    qint64 m_seenUntil = 0;                           // and when the next one is due
    qint64 m_noDataSince = 0;                         // microseconds; 0: the last read succeeded
    std::optional<qint64> m_position;
    std::optional<qint64> m_behind; // nothing up to there is shown
};
