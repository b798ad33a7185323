// SPDX-License-Identifier: MIT
#pragma once

#include "media/media_options.h"
#include "media/playback_state.h"
#include "media/retry.h"
#include "media/stop_signal.h"

#include <QImage>
#include <QThread>

#include <atomic>
#include <memory>
#include <optional>

class Playback;

/// Plays one source: opens it, decodes its pictures and hands them out as images, in the size in
/// which they are shown. A source on the network that goes away is opened again until it is back,
/// after pauses that grow. One object plays one source once. It belongs to the thread that made it;
/// the destructor stops and waits.
///
/// Memory is bounded whatever the receiver does: while it holds FramePool::Limit pictures, newer
/// ones replace each other, and the newest is handed out as soon as one of the others is released.
/// A copy of an image shares its memory: keep only what is shown.
class FFmpegThread : public QThread
{
    Q_OBJECT

public:
    /// What playstatus() says.
    enum Status { OpenFailed = 0, Playing = 1, Stopped = 2 };
    Q_ENUM(Status)

    explicit FFmpegThread(QObject* parent = nullptr);
    ~FFmpegThread() override;

    /// The source; from the thread that owns this.
    QString url() const { return m_url; }
    /// Who named the source; before start(). Without it, the operator.
    void setOrigin(MediaOptions::Origin origin) { m_origin = origin; }
    /// Detail that no screen of this size, in pixels, could show may be left out; before start().
    void setScreen(const QSize& size) { m_screen = size; }
    /// Has run() open the source; before start().
    void setNeedInit() { m_needInit = true; }
    /// Where the pictures are shown. Without it, and for an empty area, they come in full. From any
    /// thread.
    void setArea(const ShownArea& area) { m_state.setArea(area); }
    /// Ends run() soon, also out of a wait for the network, and says nothing about it. From any
    /// thread; returns at once.
    void requestStop() { m_stop.request(); }

    /// How long the source has been asked for a picture in vain, in milliseconds; 0 while pictures
    /// come at the pace of their time stamps. From any thread.
    qint64 silentMs() const;
    /// Whether a source that has an end has been shown up to it. From any thread.
    bool isAtEnd() const { return m_state.isAtEnd; }
    /// Pictures that were never handed out because newer ones came first. From any thread.
    int droppedPictures() const { return m_state.dropped; }
    /// Which try to open the source again is under way; 0 while it plays or is opened first. From
    /// any thread.
    int tries() const { return m_state.tries; }
    /// What is known of the source. From any thread.
    PictureFigures figures() const;
    /// Whether sound is decoded, for the levels among the figures. From any thread.
    void setSoundMeasured(bool on) { m_state.isSoundMeasured = on; }
    /// The picture handed out last. From any thread.
    ShownPicture shown() const { return m_state.shown(); }

signals:
    /// A picture in format RGB32; its memory stays as it is while any copy of it lives.
    void receiveImage(const QImage& image);
    /// OpenFailed: the source cannot be opened, though one on the network may play later; Playing:
    /// it is open; Stopped: stop() was called, and nothing else follows. Receivers take it through
    /// their event loop.
    void playstatus(int status, const QString& url);

public slots:
    /// A path or an address, before start().
    void setUrl(const QString& url);
    /// Opens the source; false, with the reason in the debug stream, when it cannot be played. Only
    /// run() calls it.
    bool init();
    /// Releases everything that init() has made. Only run() calls it.
    void free();
    /// Starts playing.
    void play();
    void pause() {} ///< does nothing
    void next() {}  ///< does nothing
    /// Stops playing; emits playstatus(Stopped) at once, from the caller's thread.
    void stop();

protected:
    void run() override;

private:
    bool openNow();
    void tell(Status status);
    void noteBreak();
    bool waitForNextTry();

    QString m_url = QStringLiteral("rtsp://192.168.1.128:554/1");
    MediaOptions::Origin m_origin = MediaOptions::Origin::Operator;
    QSize m_screen;
    std::atomic<bool> m_needInit{false};
    StopSignal m_stop;
    PlaybackState m_state;

    // Only run() and what it calls.
    std::unique_ptr<Playback> m_playback;
    Retry m_retry;
    std::optional<Status> m_told;
    std::optional<qint64> m_position; // where a film has broken off, microseconds
    qint64 m_startedAt = 0;           // microseconds
    qint64 m_openedAt = 0;
    bool m_hasPlayed = false;
    int m_refusals = 0; ///< one after the other
};
