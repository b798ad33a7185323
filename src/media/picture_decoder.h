// SPDX-License-Identifier: MIT
#pragma once

#include "media/media_packet.h"
#include "media/picture_shape.h"

#include <QSize>
#include <QString>

#include <memory>
#include <optional>

struct AVCodec;
struct AVCodecContext;
struct AVStream;

/// Makes pictures of the packets of one stream. Used by one thread; knows nothing of where the
/// packets come from.
class PictureDecoder
{
public:
    PictureDecoder();
    ~PictureDecoder();
    PictureDecoder(const PictureDecoder&) = delete;
    PictureDecoder& operator=(const PictureDecoder&) = delete;

    /// Leaves out detail that no screen of this size, in pixels, could show; all of it is kept for
    /// an empty one. False when FFmpeg cannot decode the stream.
    bool open(const AVStream& stream, const AVCodec& codec, const QSize& screen);

    /// Passes a packet on; false when it cannot be decoded. A decoder that `isFull` has not taken
    /// it: take() makes room, then it is to be sent again.
    bool send(const AVPacket& packet, bool* isFull);
    /// Takes the next picture, if there is one: negative when not. Leaves frame() alone then.
    int take();
    /// Takes a picture that the decoder has held back; negative when there are no more. Until
    /// resume() the decoder takes no packets.
    int drain();
    void resume();
    /// Forgets what it has of pictures; the next packet has to be of a key picture.
    void flush();
    /// Leaves out pictures that no other one needs.
    void setHurried(bool hurried);

    /// The last picture taken.
    const AVFrame& frame() const { return *m_frame; }
    /// How that is to be seen.
    PictureShape shape() const;
    /// When that is to be seen, in microseconds, when it says so and the number makes sense.
    std::optional<qint64> stampUs() const;
    /// A decode time stamp of a packet in microseconds, when it has one.
    std::optional<qint64> stampUs(const AVPacket& packet) const;
    /// When the picture in a packet is to be seen, in microseconds, when it says so.
    std::optional<qint64> seenUs(const AVPacket& packet) const;

    QString name() const;  ///< the decoder's short name
    QString codec() const; ///< what it decodes, with its profile
    int threads() const;
    QSize size() const; ///< in pixels, as the decoder says

private:
    struct FreeDecoder {
        void operator()(AVCodecContext* context) const;
    };

    std::unique_ptr<AVCodecContext, FreeDecoder> m_context;
    MediaFrame m_next; // what the decoder writes to
    MediaFrame m_frame;
    StreamShape m_shape;
    int m_timeBaseNum = 0;
    int m_timeBaseDen = 1;
    bool m_drained = false;
};
