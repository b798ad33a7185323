// SPDX-License-Identifier: MIT
#include "media/ffmpeg_session.h"

#include "common/limits.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/log.h>
#include <libavutil/mem.h>
#include <libavutil/time.h>
}

#include <QDebug>
#include <QTime>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <mutex>
#include <thread>
#include <vector>

namespace
{

/// Up to this size one thread is fast enough, and the picture is not late by one per thread.
constexpr qint64 oneThreadPicture = 1920 * 1088;

/// What FFmpeg allots at a time, wherever in this process, while this lives: also for the decoders
/// that it opens by itself to look into a source.
class BlockLimit
{
public:
    explicit BlockLimit(size_t bytes) { av_max_alloc(bytes); }
    ~BlockLimit() { av_max_alloc(Limits::MediaBlockBytes); }
    BlockLimit(const BlockLimit&) = delete;
    BlockLimit& operator=(const BlockLimit&) = delete;
};

/// A source can make FFmpeg complain many times a millisecond, and what receives the lines may
/// keep them on the disk.
void writeLibraryLine(void* context, int level, const char* format, va_list arguments)
{
    static std::atomic<qint64> minute{-1};
    static std::atomic<int> lines{0};
    if (level > av_log_get_level())
        return;
    const qint64 now = av_gettime_relative() / 60000000;
    if (minute.exchange(now) != now)
        lines = 0;
    if (++lines <= Limits::MediaLogLines)
        av_log_default_callback(context, level, format, arguments);
}

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

} // namespace

void writePlayerLine(const QString& message)
{
    qDebug().noquote() << QTime::currentTime().toString(QStringLiteral("HH:mm:ss zzz")) << message;
}

void FFmpegSession::CloseInput::operator()(AVFormatContext* context) const
{
    avformat_close_input(&context);
}

void FFmpegSession::FreeDecoder::operator()(AVCodecContext* context) const
{
    avcodec_free_context(&context);
}

void FFmpegSession::FreePacket::operator()(AVPacket* packet) const
{
    av_packet_free(&packet);
}

void FFmpegSession::FreeFrame::operator()(AVFrame* frame) const
{
    av_frame_free(&frame);
}

void FFmpegSession::setUpLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        avformat_network_init();
        av_max_alloc(Limits::MediaBlockBytes);
        av_log_set_callback(&writeLibraryLine);
        writePlayerLine(QStringLiteral("init ffmpeg lib ok version:") +
                        QLatin1String(av_version_info()));
    });
}

FFmpegSession::FFmpegSession(std::function<bool()> isInterrupted) : m_gate(std::move(isInterrupted))
{
    setUpLibrary();
}

FFmpegSession::~FFmpegSession() = default;

bool FFmpegSession::open(const QString& url, MediaOptions::Origin origin)
{
    if (!openInput(url, origin) || !lookIntoStreams() || !openVideo() || !openAudio())
        return false;
    m_packet.reset(av_packet_alloc());
    m_next.reset(av_frame_alloc());
    m_frame.reset(av_frame_alloc());
    m_sound.reset(av_frame_alloc());
    if (!m_packet || !m_next || !m_frame || !m_sound)
        return false;
    m_gate.setOpened();
    av_dump_format(m_input.get(), 0, url.toUtf8().constData(), 0);
    writePlayerLine(QStringLiteral("init ffmpeg finsh"));
    return true;
}

bool FFmpegSession::openInput(const QString& url, MediaOptions::Origin origin)
{
    m_isLocal = MediaOptions::isLocalFile(url);
    const BlockLimit block(MediaOptions::isRtsp(url) ? Limits::MediaSessionBytes
                                                     : Limits::MediaProbeBytes);
    AVDictionary* options = nullptr;
    AVFormatContext* context = nullptr;
    if (MediaOptions::fill(&options, url, origin))
        context = avformat_alloc_context();
    if (context) {
        m_gate.guard(context, url, origin);
        // On failure it has released the context.
        if (avformat_open_input(&context, url.toUtf8().constData(), nullptr, &options) < 0)
            context = nullptr;
    }
    av_dict_free(&options);
    m_input.reset(context);
    if (!m_input)
        writePlayerLine(QStringLiteral("open input error ") + url);
    m_gate.setHeaderRead();
    return m_input != nullptr;
}

/// Decodes a little of each stream to find out what a header does not say.
bool FFmpegSession::lookIntoStreams()
{
    std::vector<AVDictionary*> limits(m_input->nb_streams, nullptr);
    for (AVDictionary*& each : limits) {
        av_dict_set_int(&each, "max_pixels", Limits::PicturePixels, 0);
        av_dict_set_int(&each, "max_samples", Limits::SoundSamples, 0);
    }
    const BlockLimit block(Limits::MediaProbeBytes);
    const int result = avformat_find_stream_info(m_input.get(), limits.data());
    for (AVDictionary*& each : limits)
        av_dict_free(&each);
    if (result < 0)
        writePlayerLine(QStringLiteral("find stream info error"));
    return result >= 0;
}

bool FFmpegSession::openVideo()
{
    const AVCodec* codec = nullptr;
    m_videoStream = av_find_best_stream(m_input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (m_videoStream < 0) {
        writePlayerLine(QStringLiteral("find video stream index error"));
        return false;
    }
    const AVStream& stream = *m_input->streams[m_videoStream];
    codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec) {
        writePlayerLine(QStringLiteral("video decoder not found"));
        return false;
    }
    m_video = openDecoder(stream, *codec, true);
    if (!m_video) {
        writePlayerLine(QStringLiteral("open video codec error"));
        return false;
    }
    if (videoWidth() == 0 || videoHeight() == 0) {
        writePlayerLine(QStringLiteral("find width height error"));
        return false;
    }
    describeVideo();
    return true;
}

bool FFmpegSession::openAudio()
{
    for (unsigned n = 0; n < m_input->nb_streams && m_audioStream < 0; ++n) {
        if (m_input->streams[n]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            m_audioStream = int(n);
    }
    if (m_audioStream < 0) {
        writePlayerLine(QStringLiteral("find audio stream index error"));
        return true;
    }
    const AVStream& stream = *m_input->streams[m_audioStream];
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec) {
        writePlayerLine(QStringLiteral("audio codec not found"));
        return false;
    }
    m_audio = openDecoder(stream, *codec, false);
    if (!m_audio) {
        writePlayerLine(QStringLiteral("open audio codec error"));
        return false;
    }
    describeAudio();
    return true;
}

FFmpegSession::Decoder FFmpegSession::openDecoder(const AVStream& stream, const AVCodec& codec,
                                                  bool isVideo) const
{
    Decoder decoder(avcodec_alloc_context3(&codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0)
        return nullptr;
    decoder->pkt_timebase = stream.time_base;
    decoder->max_samples = Limits::SoundSamples;
    if (isVideo) {
        decoder->lowres = halvings(codec, {decoder->width, decoder->height}, m_screen);
        decoder->flags2 |= AV_CODEC_FLAG2_FAST;
        decoder->max_pixels = Limits::PicturePixels;
        if (qint64(decoder->width) * decoder->height > oneThreadPicture)
            decoder->thread_count = int(std::clamp(std::thread::hardware_concurrency(), 1U, 4U));
    }
    if (avcodec_open2(decoder.get(), &codec, nullptr) < 0)
        return nullptr;
    return decoder;
}

void FFmpegSession::describeVideo() const
{
    writePlayerLine(
        QStringLiteral("视频流信息 -> 索引: %1  解码: %2  格式: %3  时长: %4 秒  分辨率: %5*%6")
            .arg(QString::number(m_videoStream), QLatin1String(m_video->codec->name),
                 QLatin1String(m_input->iformat->name),
                 QString::number(qMax<qint64>(0, m_input->duration) / AV_TIME_BASE),
                 QString::number(videoWidth()), QString::number(videoHeight())));
}

void FFmpegSession::describeAudio() const
{
    writePlayerLine(
        QStringLiteral("音频流信息 -> 索引: %1  解码: %2  比特率: %3  声道数: %4  采样: %5")
            .arg(QString::number(m_audioStream), QLatin1String(m_audio->codec->name),
                 QString::number(m_input->bit_rate),
                 QString::number(m_audio->ch_layout.nb_channels),
                 QString::number(m_audio->sample_rate)));
}

int FFmpegSession::read()
{
    av_packet_unref(m_packet.get());
    // FFmpeg remembers the end of the data; only asked this way it looks whether there is more.
    if (m_input->pb && m_input->pb->eof_reached)
        avio_feof(m_input->pb);
    return av_read_frame(m_input.get(), m_packet.get());
}

bool FFmpegSession::isVideo() const
{
    return m_packet->stream_index == m_videoStream;
}

bool FFmpegSession::isSound() const
{
    return m_audio && m_packet->stream_index == m_audioStream;
}

int FFmpegSession::packetBytes() const
{
    return m_packet->size;
}

std::optional<qint64> FFmpegSession::stampUs() const
{
    if (m_packet->dts == AV_NOPTS_VALUE)
        return std::nullopt;
    return av_rescale_q(m_packet->dts, m_input->streams[m_videoStream]->time_base,
                        AVRational{1, AV_TIME_BASE});
}

int FFmpegSession::decode()
{
    const int sent = avcodec_send_packet(m_video.get(), m_packet.get());
    if (sent < 0 && sent != AVERROR(EAGAIN))
        return sent;
    const int received = takePicture();
    // A decoder that was full has room now.
    if (sent == AVERROR(EAGAIN))
        avcodec_send_packet(m_video.get(), m_packet.get());
    return received;
}

void FFmpegSession::decodeSound(const std::function<void(const AVFrame&)>& take)
{
    if (avcodec_send_packet(m_audio.get(), m_packet.get()) < 0)
        return;
    // A packet has few frames, whatever it says; the next one makes room for the rest.
    constexpr int mostFrames = 16;
    for (int n = 0; n < mostFrames; ++n) {
        if (avcodec_receive_frame(m_audio.get(), m_sound.get()) < 0)
            return;
        take(*m_sound);
    }
}

int FFmpegSession::drain()
{
    if (!m_drained) {
        m_drained = true;
        avcodec_send_packet(m_video.get(), nullptr);
    }
    return takePicture();
}

/// Leaves the picture in hand alone unless there is a new one.
int FFmpegSession::takePicture()
{
    const int received = avcodec_receive_frame(m_video.get(), m_next.get());
    if (received >= 0) {
        av_frame_unref(m_frame.get());
        av_frame_move_ref(m_frame.get(), m_next.get());
    }
    return received;
}

void FFmpegSession::resume()
{
    if (m_drained)
        avcodec_flush_buffers(m_video.get());
    m_drained = false;
}

PictureShape FFmpegSession::shape() const
{
    return shapeOf(m_input.get(), m_input->streams[m_videoStream], m_frame.get());
}

PictureFigures FFmpegSession::figures() const
{
    PictureFigures figures;
    figures.codec = QLatin1String(avcodec_get_name(m_video->codec_id));
    const char* profile = avcodec_profile_name(m_video->codec_id, m_video->profile);
    if (profile)
        figures.codec += QStringLiteral(" (%1)").arg(QLatin1String(profile));
    figures.threads = m_video->active_thread_type != 0 ? m_video->thread_count : 1;
    return figures;
}

int FFmpegSession::soundChannels() const
{
    return m_audio ? m_audio->ch_layout.nb_channels : 0;
}

int FFmpegSession::videoWidth() const
{
    return m_video ? m_video->width : 0;
}

int FFmpegSession::videoHeight() const
{
    return m_video ? m_video->height : 0;
}

bool FFmpegSession::hasEnd() const
{
    return m_isLocal || (m_input->duration != AV_NOPTS_VALUE && m_input->duration > 0);
}
