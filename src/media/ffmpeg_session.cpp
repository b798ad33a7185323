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

#include <atomic>
#include <cstdarg>
#include <mutex>
#include <vector>

namespace
{

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

/// Whether this address cannot be opened here, or not by this user: asking again would change
/// nothing, and may lock an account.
bool isWrongAddress(int result)
{
    switch (result) {
    case AVERROR_PROTOCOL_NOT_FOUND:
    case AVERROR(EACCES):
    case AVERROR(EINVAL):
    case AVERROR_HTTP_BAD_REQUEST:
    case AVERROR_HTTP_UNAUTHORIZED:
    case AVERROR_HTTP_FORBIDDEN:
        return true;
    default:
        return false;
    }
}

/// Whether the server has no such thing.
bool isUnknown(int result)
{
    return result == AVERROR_HTTP_NOT_FOUND || result == AVERROR_HTTP_OTHER_4XX;
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

FFmpegSession::FFmpegSession(std::function<bool()> isInterrupted)
    : m_gate([this, isInterrupted = std::move(isInterrupted)] {
        return m_interrupt || isInterrupted();
    })
{
    setUpLibrary();
}

FFmpegSession::~FFmpegSession() = default;

bool FFmpegSession::open(const QString& url, MediaOptions::Origin origin)
{
    if (!openInput(url, origin) || !lookIntoStreams() || !openVideo() || !openAudio())
        return false;
    m_sound.reset(av_frame_alloc());
    if (!m_sound)
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
    int result = AVERROR(EACCES);
    if (MediaOptions::fill(&options, url, origin, m_lookUs))
        context = avformat_alloc_context();
    if (context) {
        m_gate.guard(context, url, origin);
        result = avformat_open_input(&context, url.toUtf8().constData(), nullptr, &options);
        // On failure it has released the context.
        if (result < 0) {
            context = nullptr;
            m_gate.setFailed();
        }
    }
    // A recording that its box does not have is gone; a stream may only not be there yet.
    m_isRefused = m_isLocal || isWrongAddress(result) ||
                  (origin == MediaOptions::Origin::Box && isUnknown(result));
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
    m_video = std::make_unique<PictureDecoder>();
    if (!m_video->open(stream, *codec, m_screen)) {
        writePlayerLine(QStringLiteral("open video codec error"));
        return false;
    }
    if (m_video->size().isEmpty()) {
        writePlayerLine(QStringLiteral("find width height error"));
        m_wantsLongLook = !m_isLocal && m_lookUs < MediaOptions::LongLookUs;
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
    m_audio.reset(avcodec_alloc_context3(codec));
    if (m_audio)
        m_audio->max_samples = Limits::SoundSamples;
    if (!m_audio || avcodec_parameters_to_context(m_audio.get(), stream.codecpar) < 0 ||
        avcodec_open2(m_audio.get(), codec, nullptr) < 0) {
        writePlayerLine(QStringLiteral("open audio codec error"));
        return false;
    }
    describeAudio();
    return true;
}

void FFmpegSession::describeVideo() const
{
    writePlayerLine(
        QStringLiteral("视频流信息 -> 索引: %1  解码: %2  格式: %3  时长: %4 秒  分辨率: %5*%6")
            .arg(QString::number(m_videoStream), m_video->name(),
                 QLatin1String(m_input->iformat->name),
                 QString::number(qMax<qint64>(0, m_input->duration) / AV_TIME_BASE),
                 QString::number(m_video->size().width()),
                 QString::number(m_video->size().height())));
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

bool FFmpegSession::mayComeLater()
{
    return !m_isRefused && !isOverLimit() && !(m_input && hasEnd());
}

int FFmpegSession::read(AVPacket& packet)
{
    av_packet_unref(&packet);
    // FFmpeg remembers the end of the data; only asked this way it looks whether a film has grown.
    if (hasEnd() && m_input->pb && m_input->pb->eof_reached)
        avio_feof(m_input->pb);
    if (!hasEnd())
        m_gate.setReading();
    const int result = av_read_frame(m_input.get(), &packet);
    if (result >= 0 && isVideo(packet))
        ++m_pictures;
    return result;
}

bool FFmpegSession::mayGrow() const
{
    const int64_t counted = m_input->streams[m_videoStream]->nb_frames;
    return qstrncmp(m_input->iformat->name, "mov", 3) != 0 || counted <= 0 || m_pictures < counted;
}

bool FFmpegSession::isBroken(int result) const
{
    if (m_isLocal || result >= 0)
        return false;
    const bool hasFailed =
        m_input->pb && m_input->pb->error < 0 && m_input->pb->error != AVERROR_EOF;
    return hasFailed ||
           (result != AVERROR_EOF && result != AVERROR(EAGAIN) && result != AVERROR_INVALIDDATA);
}

bool FFmpegSession::seek(qint64 stampUs)
{
    const AVRational base = m_input->streams[m_videoStream]->time_base;
    const int64_t stamp = av_rescale_q(stampUs, AVRational{1, AV_TIME_BASE}, base);
    return av_seek_frame(m_input.get(), m_videoStream, stamp, AVSEEK_FLAG_BACKWARD) >= 0;
}

bool FFmpegSession::isVideo(const AVPacket& packet) const
{
    return packet.stream_index == m_videoStream;
}

bool FFmpegSession::isSound(const AVPacket& packet) const
{
    return m_audio && packet.stream_index == m_audioStream;
}

void FFmpegSession::decodeSound(const AVPacket& packet,
                                const std::function<void(const AVFrame&)>& take)
{
    if (avcodec_send_packet(m_audio.get(), &packet) < 0)
        return;
    // A packet has few frames, whatever it says; the next one makes room for the rest.
    constexpr int mostFrames = 16;
    for (int n = 0; n < mostFrames; ++n) {
        if (avcodec_receive_frame(m_audio.get(), m_sound.get()) < 0)
            return;
        take(*m_sound);
    }
}

PictureFigures FFmpegSession::figures() const
{
    PictureFigures figures;
    figures.codec = m_video->codec();
    figures.threads = m_video->threads();
    return figures;
}

int FFmpegSession::soundChannels() const
{
    return m_audio ? m_audio->ch_layout.nb_channels : 0;
}

bool FFmpegSession::hasEnd() const
{
    return m_isLocal || (m_input->duration != AV_NOPTS_VALUE && m_input->duration > 0);
}

bool FFmpegSession::isLive() const
{
    return !hasEnd() && qstrcmp(m_input->iformat->name, "hls") != 0;
}
