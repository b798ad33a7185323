// SPDX-License-Identifier: MIT
#pragma once

#include "media/picture_figures.h"
#include "media/picture_shape.h"
#include "media/source_gate.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

struct AVCodec;
struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct AVStream;

/// Writes a debug line of the player: the time, then `message`.
void writePlayerLine(const QString& message);

/// One opened source: its demuxer, its decoders, the packet and the picture in hand. Everything is
/// released with it. Belongs to one thread; calls block until there is data, the source has been
/// silent for MediaOptions::SilenceLimitUs, or `isInterrupted` says so.
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
    /// Opens the source and its decoders and describes both in the debug stream. Once only. False,
    /// with the reason in the debug stream, when there is nothing to show.
    bool open(const QString& url, MediaOptions::Origin origin);

    /// Takes the next packet in place of the one before. FFmpeg's result code, negative when there
    /// is none; the next call tries again.
    int read();
    /// Whether it has had more than one source gets: it goes on no more.
    bool isOverLimit() { return m_gate.isOverLimit(); }
    bool isVideo() const;
    bool isSound() const;
    int packetBytes() const;
    /// The packet's decode time stamp in microseconds, when it has one.
    std::optional<qint64> stampUs() const;
    /// Passes the packet to the decoder and takes a picture from it, if there is one: negative
    /// when not.
    int decode();
    /// Takes a picture that the decoder has held back; negative when there are no more. Until
    /// resume() the decoder takes no packets.
    int drain();
    void resume();

    /// Passes the packet to the sound's decoder and each frame that comes of it to `take`. Errors
    /// are the source's, and pass.
    void decodeSound(const std::function<void(const AVFrame&)>& take);

    /// The last picture that decode() or drain() has taken.
    const AVFrame& frame() const { return *m_frame; }
    /// How that is to be seen.
    PictureShape shape() const;

    /// What is known of it by now: its codec, what decodes it.
    PictureFigures figures() const;
    int soundChannels() const; ///< 0: without sound
    int videoWidth() const;    ///< in pixels, as the decoder says
    int videoHeight() const;   ///< in pixels
    /// Whether it has an end: a file or recording, as opposed to a stream.
    bool hasEnd() const;

private:
    struct CloseInput {
        void operator()(AVFormatContext* context) const;
    };
    struct FreeDecoder {
        void operator()(AVCodecContext* context) const;
    };
    struct FreePacket {
        void operator()(AVPacket* packet) const;
    };
    struct FreeFrame {
        void operator()(AVFrame* frame) const;
    };
    using Decoder = std::unique_ptr<AVCodecContext, FreeDecoder>;

    int takePicture();
    bool openInput(const QString& url, MediaOptions::Origin origin);
    bool lookIntoStreams();
    bool openVideo();
    bool openAudio();
    Decoder openDecoder(const AVStream& stream, const AVCodec& codec, bool isVideo) const;
    void describeVideo() const;
    void describeAudio() const;

    SourceGate m_gate; // the input is closed through it
    std::unique_ptr<AVFormatContext, CloseInput> m_input;
    Decoder m_video;
    Decoder m_audio; // opened to be described; used while its level is wanted
    int m_videoStream = -1;
    int m_audioStream = -1;
    QSize m_screen;
    bool m_isLocal = false;
    bool m_drained = false;
    std::unique_ptr<AVPacket, FreePacket> m_packet;
    std::unique_ptr<AVFrame, FreeFrame> m_next; // what the decoder writes to
    std::unique_ptr<AVFrame, FreeFrame> m_frame;
    std::unique_ptr<AVFrame, FreeFrame> m_sound;
};
