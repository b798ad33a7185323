// SPDX-License-Identifier: MIT
#pragma once

#include "media/media_packet.h"
#include "media/picture_decoder.h"
#include "media/picture_figures.h"
#include "media/source_gate.h"

#include <QString>

#include <atomic>
#include <functional>
#include <memory>

struct AVCodec;
struct AVCodecContext;
struct AVFormatContext;
struct AVPacket;
struct AVStream;

/// Writes a debug line of the player: the time, then `message`.
void writePlayerLine(const QString& message);

/// One opened source: where its packets come from, and the decoders for them. Everything is
/// released with it. One thread at a time reads; calls block until there is data, the source has
/// been silent for MediaOptions::SilenceLimitUs, or `isInterrupted` or interrupt() says so.
class FFmpegSession
{
public:
    /// Once per process, however often and from whichever thread it is called.
    static void setUpLibrary();

    /// `isInterrupted` is asked several times a second while a call waits; it must be fast.
    explicit FFmpegSession(std::function<bool()> isInterrupted);
    ~FFmpegSession();
    FFmpegSession(const FFmpegSession&) = delete;
    FFmpegSession& operator=(const FFmpegSession&) = delete;

    /// Decoders that can do so leave out detail that no screen of this size could show; before
    /// open(). Without it, in pixels, pictures come in full.
    void setScreen(const QSize& size) { m_screen = size; }
    /// open() looks at more of a stream.
    void setLongLook() { m_lookUs = MediaOptions::LongLookUs; }
    /// Opens the source and its decoders and describes both in the debug stream. Once only. False,
    /// with the reason in the debug stream, when there is nothing to show.
    bool open(const QString& url, MediaOptions::Origin origin);
    /// After open() has failed: whether a longer look at the stream may help.
    bool wantsLongLook() const { return m_wantsLongLook; }
    /// After open() has failed: whether the same address may have something to show later.
    bool mayComeLater();

    /// Takes the next packet. FFmpeg's result code, negative when there is none; the next call
    /// tries again.
    int read(AVPacket& packet);
    /// Whether the end of the data may not be the source's: not behind the last picture that the
    /// header of an MP4 file counts. Only who reads may ask.
    bool mayGrow() const;
    /// Whether that result means that the connection is gone, as opposed to the source's end.
    bool isBroken(int result) const;
    /// Ends a read that waits in another thread, and all that follow.
    void interrupt() { m_interrupt = true; }
    /// Goes to a key picture at or before that stamp, in microseconds; false when the source
    /// cannot do so.
    bool seek(qint64 stampUs);
    /// Whether it has had more than one source gets: it goes on no more. Only who reads may ask.
    bool isOverLimit() { return m_gate.isOverLimit(); }
    bool isVideo(const AVPacket& packet) const;
    bool isSound(const AVPacket& packet) const;
    /// Passes the packet to the sound's decoder and each frame that comes of it to `take`. Errors
    /// are the source's, and pass. Only who reads may call it.
    void decodeSound(const AVPacket& packet, const std::function<void(const AVFrame&)>& take);
    /// What is known of it by now: its codec, what decodes it.
    PictureFigures figures() const;
    int soundChannels() const; ///< 0: without sound
    /// What makes pictures of the packets; another thread than the one that reads may use it.
    PictureDecoder& pictures() { return *m_video; }
    /// Whether it has an end: a file or recording, as opposed to a stream.
    bool hasEnd() const;
    /// Whether it arrives picture by picture, as opposed to files and to playlists of pieces that
    /// last for seconds.
    bool isLive() const;

private:
    struct CloseInput {
        void operator()(AVFormatContext* context) const;
    };
    struct FreeDecoder {
        void operator()(AVCodecContext* context) const;
    };

    bool openInput(const QString& url, MediaOptions::Origin origin);
    bool lookIntoStreams();
    bool openVideo();
    bool openAudio();
    void describeVideo() const;
    void describeAudio() const;

    std::atomic<bool> m_interrupt{false};
    SourceGate m_gate; // the input is closed through it
    std::unique_ptr<AVFormatContext, CloseInput> m_input;
    std::unique_ptr<PictureDecoder> m_video;
    std::unique_ptr<AVCodecContext, FreeDecoder>
        m_audio; // described; used while its level is wanted
    MediaFrame m_sound;
    int m_videoStream = -1;
    int m_audioStream = -1;
    qint64 m_pictures = 0; // read
    QSize m_screen;
    qint64 m_lookUs = MediaOptions::ShortLookUs;
    bool m_wantsLongLook = false;
    bool m_isLocal = false;
    bool m_isRefused = false; // for good
};
