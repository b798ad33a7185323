// SPDX-License-Identifier: MIT
#pragma once

#include "media/figures_meter.h"
#include "media/frame_converter.h"
#include "media/media_options.h"
#include "media/pacing.h"

#include <QImage>
#include <QThread>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>

class FFmpegSession;

/// Plays one source: opens it, decodes its pictures at the pace of their time stamps and hands them
/// out as images. One object plays one source once. It belongs to the thread that made it; the
/// destructor stops and waits.
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
    /// Ends run() soon, also out of a wait for the network, and says nothing about it. From any
    /// thread; returns at once.
    void requestStop();

    /// How long the source has been asked for a picture in vain, in milliseconds; 0 while pictures
    /// come at the pace of their time stamps. From any thread.
    qint64 silentMs() const;
    /// Whether a source that has an end has been shown up to it. From any thread.
    bool isAtEnd() const { return m_atEnd; }
    /// Pictures that were never handed out because newer ones came first. From any thread.
    int droppedPictures() const { return m_dropped; }
    /// What is known of the source. From any thread.
    PictureFigures figures() const;
    /// Whether sound is decoded, for the levels among the figures. From any thread.
    void setSoundMeasured(bool on) { m_isSoundMeasured = on; }

signals:
    /// A picture in format RGB32; its memory stays as it is while any copy of it lives.
    void receiveImage(const QImage& image);
    /// OpenFailed: the source cannot be opened; Playing: it is open; Stopped: stop() was called,
    /// and nothing else follows. Receivers take it through their event loop.
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
    void step();
    void measure();
    void showPicture();
    void showPending();
    void waitUntilDue();
    void waitForData(int result);
    void showHeldBack();
    void rest(qint64 microseconds);
    void tell(Status status);

    QString m_url = QStringLiteral("rtsp://192.168.1.128:554/1");
    MediaOptions::Origin m_origin = MediaOptions::Origin::Operator;
    QSize m_screen;
    std::atomic<bool> m_needInit{false};
    std::atomic<bool> m_stopPlay{false};
    std::mutex m_restMutex; // with m_wake: stop wakes a rest
    std::condition_variable m_wake;

    std::atomic<qint64> m_waitingSince{0}; // microseconds; 0: not waiting for the source
    std::atomic<bool> m_atEnd{false};
    std::atomic<int> m_dropped{0};
    std::atomic<bool> m_isSoundMeasured{false};
    FiguresMeter m_meter;

    // Only run() and what it calls.
    std::unique_ptr<FFmpegSession> m_session;
    std::unique_ptr<FrameConverter> m_converter;
    Pacing m_pacing;
    bool m_isPending = false; // the session's picture has not found a free image yet
    qint64 m_noDataSince = 0; // microseconds; 0: the last read succeeded
};
