// SPDX-License-Identifier: MIT
#include "benchmarks/clock_sender.h"

#include "benchmarks/bench_support.h"
#include "benchmarks/clock_picture.h"
#include "benchmarks/clock_relay.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <QUdpSocket>

#include <cmath>
#include <cstdio>
#include <unistd.h>

namespace
{

constexpr const char* senderAddress = "127.77.35.1";
constexpr int picturesPerSecond = 50;
constexpr int readyLimitMs = 20000;
/// Enough for the encoder to have said what it sends, and for a listener to listen.
constexpr int warmUpMs = 700;
/// Being later than this, a sender's pictures go on from now; until the stream runs, at once.
constexpr double catchUpMs = 1000;
constexpr double startUpMs = 30;
constexpr double noteLateMs = 200;

int freePort()
{
    QUdpSocket socket;
    if (!socket.bind(QHostAddress(senderAddress), 0))
        qFatal("no free port at %s", senderAddress);
    return socket.localPort();
}

/// Makes pictures at the pace of the sender's clock and has them encoded.
class ClockEncoder
{
public:
    ClockEncoder(int partsPerMillion, const QStringList& target)
        : m_periodMs(1000.0 / picturesPerSecond / (1 + partsPerMillion / 1e6))
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(1);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { writeDue(); });
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const QString input = QString("-f rawvideo -pix_fmt yuv420p -video_size %1x%2 "
                                      "-framerate %3 -probesize 32 -i pipe:0")
                                  .arg(ClockPicture::Width)
                                  .arg(ClockPicture::Height)
                                  .arg(picturesPerSecond);
        const QString encoder =
            QString("-c:v libx264 -preset ultrafast -tune zerolatency -threads 1 -g %1 -f mpegts "
                    "-mpegts_flags pat_pmt_at_frames -muxdelay 0 -muxpreload 0 -flush_packets 1")
                .arg(picturesPerSecond / 2);
        process.start("setpriv",
                      QStringList{"--pdeathsig", "KILL", "ffmpeg", "-v", "error", "-nostats"} +
                          input.split(' ') + encoder.split(' ') + target);
        if (!process.waitForStarted())
            qFatal("ffmpeg does not start");
        m_timer.start();
    }

    QProcess process;

private:
    void writeDue()
    {
        // A picture that waits in here would be old when it is sent.
        if (process.bytesToWrite() > 0)
            return;
        const double now = elapsedMs();
        if (now - m_dueMs > (m_number < picturesPerSecond ? startUpMs : catchUpMs))
            m_dueMs = now;
        if (now < m_dueMs)
            return;
        if (now - m_dueMs > noteLateMs)
            note(QString("sender: a picture is %1 ms late").arg(now - m_dueMs, 0, 'f', 0));
        process.write(ClockPicture::make(ClockPicture::nowMs(), m_number++));
        m_dueMs += m_periodMs;
    }

    static double elapsedMs()
    {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
    }

    QTimer m_timer;
    double m_periodMs;
    double m_dueMs = 0;
    int m_number = 0;
};

void sayReady(const QString& address)
{
    std::printf("ready %s\n", qPrintable(address));
    std::fflush(stdout);
}

/// By datagrams ffmpeg sends itself; players get a rest that fits their way.
struct DatagramWay {
    explicit DatagramWay(bool isSrt)
    {
        const QString base =
            QString("%1://%2:%3").arg(isSrt ? "srt" : "udp", senderAddress).arg(freePort());
        const QString latency = "latency=20000"; // microseconds
        target = base + (isSrt ? "?mode=listener&" + latency : "?pkt_size=1316");
        address = isSrt ? base + "?" + latency : base;
    }
    QString target;
    QString address;
};

} // namespace

ClockSender::ClockSender(const ClockStream& stream)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationFilePath(),
                    {"--send", stream.way, "--ppm", QString::number(stream.partsPerMillion),
                     "--burst", QString::number(stream.burstMs)});
    QByteArray said;
    while (!said.endsWith('\n')) {
        if (!m_process.waitForReadyRead(readyLimitMs))
            qFatal("the sender did not start");
        said += m_process.readAllStandardOutput();
    }
    m_address = QString::fromUtf8(said.simplified().split(' ').value(1));
}

ClockSender::~ClockSender()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(2000))
        m_process.kill();
    m_process.waitForFinished(2000);
}

int sendClock(const ClockStream& stream)
{
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [] {
        char rest[64];
        if (::read(STDIN_FILENO, rest, sizeof rest) <= 0)
            QCoreApplication::quit();
    });
    const bool isHttp = stream.way == "http";
    const DatagramWay way(stream.way == "srt");
    ClockEncoder encoder(stream.partsPerMillion, {isHttp ? "pipe:1" : way.target});
    ClockRelay relay(stream.burstMs);
    QString address = way.address;
    if (isHttp) {
        address = relay.listen(senderAddress);
        QObject::connect(&encoder.process, &QProcess::readyReadStandardOutput,
                         [&] { relay.send(encoder.process.readAllStandardOutput()); });
    }
    QTimer::singleShot(warmUpMs + stream.burstMs, [&] { sayReady(address); });
    const int result = QCoreApplication::exec();
    encoder.process.disconnect();
    encoder.process.kill();
    encoder.process.waitForFinished(2000);
    return result;
}
