// SPDX-License-Identifier: MIT
#include "media/picture_decoder.h"

#include "common/limits.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <thread>

namespace
{

/// Up to this size one thread is fast enough, and the picture is not late by one per thread.
constexpr qint64 oneThreadPicture = 1920 * 1088;
/// Stamps are untrusted: differences of smaller ones do not overflow.
constexpr int64_t largestStampUs = INT64_C(1) << 60;
constexpr AVRational microseconds{1, AV_TIME_BASE};

/// How often the decoder may halve the picture, so that it still fills the screen.
int halvings(const AVCodec& codec, const QSize& picture, const QSize& screen)
{
    int count = 0;
    while (!screen.isEmpty() && count < codec.max_lowres &&
           (picture.width() >> (count + 1)) >= screen.width() &&
           (picture.height() >> (count + 1)) >= screen.height())
        ++count;
    return count;
}

std::optional<qint64> toMicroseconds(int64_t stamp, AVRational base)
{
    if (stamp == AV_NOPTS_VALUE)
        return std::nullopt;
    const int64_t time = av_rescale_q(stamp, base, microseconds);
    return time >= -largestStampUs && time <= largestStampUs ? std::optional<qint64>(time)
                                                             : std::nullopt;
}

} // namespace

void PictureDecoder::FreeDecoder::operator()(AVCodecContext* context) const
{
    avcodec_free_context(&context);
}

PictureDecoder::PictureDecoder() = default;

PictureDecoder::~PictureDecoder() = default;

bool PictureDecoder::open(const AVStream& stream, const AVCodec& codec, const QSize& screen)
{
    m_context.reset(avcodec_alloc_context3(&codec));
    m_next.reset(av_frame_alloc());
    m_frame.reset(av_frame_alloc());
    if (!m_context || !m_next || !m_frame ||
        avcodec_parameters_to_context(m_context.get(), stream.codecpar) < 0)
        return false;
    m_timeBaseNum = stream.time_base.num;
    m_timeBaseDen = stream.time_base.den;
    m_shape = shapeOf(stream);
    m_context->pkt_timebase = stream.time_base;
    m_context->lowres = halvings(codec, {m_context->width, m_context->height}, screen);
    m_context->flags2 |= AV_CODEC_FLAG2_FAST;
    m_context->max_pixels = Limits::PicturePixels;
    if (qint64(m_context->width) * m_context->height > oneThreadPicture)
        m_context->thread_count = int(std::clamp(std::thread::hardware_concurrency(), 1U, 4U));
    return avcodec_open2(m_context.get(), &codec, nullptr) >= 0;
}

bool PictureDecoder::send(const AVPacket& packet, bool* isFull)
{
    const int result = avcodec_send_packet(m_context.get(), &packet);
    *isFull = result == AVERROR(EAGAIN);
    return result >= 0 || *isFull;
}

int PictureDecoder::take()
{
    const int received = avcodec_receive_frame(m_context.get(), m_next.get());
    if (received >= 0) {
        av_frame_unref(m_frame.get());
        av_frame_move_ref(m_frame.get(), m_next.get());
    }
    return received;
}

int PictureDecoder::drain()
{
    if (!m_drained) {
        m_drained = true;
        avcodec_send_packet(m_context.get(), nullptr);
    }
    return take();
}

void PictureDecoder::resume()
{
    if (m_drained)
        flush();
    m_drained = false;
}

void PictureDecoder::flush()
{
    avcodec_flush_buffers(m_context.get());
}

void PictureDecoder::setHurried(bool hurried)
{
    m_context->skip_frame = hurried ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
}

PictureShape PictureDecoder::shape() const
{
    return shapeOf(m_shape, *m_frame);
}

std::optional<qint64> PictureDecoder::stampUs() const
{
    return toMicroseconds(m_frame->best_effort_timestamp, {m_timeBaseNum, m_timeBaseDen});
}

std::optional<qint64> PictureDecoder::stampUs(const AVPacket& packet) const
{
    return toMicroseconds(packet.dts, {m_timeBaseNum, m_timeBaseDen});
}

std::optional<qint64> PictureDecoder::seenUs(const AVPacket& packet) const
{
    return toMicroseconds(packet.pts, {m_timeBaseNum, m_timeBaseDen});
}

QString PictureDecoder::name() const
{
    return QLatin1String(m_context->codec->name);
}

QString PictureDecoder::codec() const
{
    const QString name = QLatin1String(avcodec_get_name(m_context->codec_id));
    const char* profile = avcodec_profile_name(m_context->codec_id, m_context->profile);
    return profile ? QStringLiteral("%1 (%2)").arg(name, QLatin1String(profile)) : name;
}

int PictureDecoder::threads() const
{
    return m_context->active_thread_type ? m_context->thread_count : 1;
}

QSize PictureDecoder::size() const
{
    return {m_context->width, m_context->height};
}
