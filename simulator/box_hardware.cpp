// SPDX-License-Identifier: MIT
// The part of the box's works that encodes: recordings, the live picture and the event feeds.
#include "simulator/box_core.h"
#include "simulator/faulty_reply.h"

#include <QFile>

#include <cmath>

namespace sim
{
namespace
{

constexpr int pollMs = 5;
constexpr int startLimitMs = 8000;
constexpr int finishLimitMs = 10000;
constexpr int ticksPerSecond = 10; // of the event feeds

} // namespace

bool BoxCore::doAndWait(HttpWire* wire, int ms, const std::function<void()>& work,
                        const std::function<bool()>& isOver)
{
    // Shared, because the work is done even if nobody waits for it any more.
    const auto begun = std::make_shared<std::atomic<bool>>(false);
    QMetaObject::invokeMethod(this, [work, begun] {
        work();
        *begun = true;
    });
    for (int waited = 0; !*begun || !isOver(); waited += pollMs) {
        if (waited > ms || !wire->wait(pollMs))
            return false;
    }
    return true;
}

bool BoxCore::startRecording(const QString& fileName, HttpWire* wire)
{
    for (const Recording& recording : m_state.recordings()) {
        if (recording.name == fileName)
            return false;
    }
    bool isFree = false;
    m_state.changeActivity([&](BoxActivity& activity) {
        isFree = activity.recordingFile.isEmpty();
        activity.recordingFile = isFree ? fileName : activity.recordingFile;
    });
    if (!isFree)
        return false;
    const auto start = [this, fileName] {
        if (m_power == Power::On)
            m_recorder.start(recordingPath(fileName), address());
    };
    doAndWait(wire, startLimitMs, start,
              [this] { return m_recorder.state() != Recorder::State::Starting; });
    return m_recorder.state() == Recorder::State::Running;
}

bool BoxCore::stopRecording(HttpWire* wire)
{
    if (m_state.activity().recordingFile.isEmpty())
        return false;
    const bool over = doAndWait(
        wire, finishLimitMs, [this] { m_recorder.finish(); },
        [this] { return m_recorder.state() != Recorder::State::Finishing; });
    return over && m_recorder.state() == Recorder::State::Idle;
}

void BoxCore::keepRecording(bool good)
{
    QString name;
    m_state.changeActivity([&name](BoxActivity& activity) {
        name = activity.recordingFile;
        activity.recordingFile.clear();
    });
    if (good)
        m_state.addRecording({name, recordingPath(name)});
}

QString BoxCore::startLive(quint16 srtPort, HttpWire* wire)
{
    const auto start = [this] {
        if (m_power == Power::On && m_live.state() != LiveStream::State::On) {
            m_live.start(address(), m_setup.livePort, [this](HttpReply* reply) {
                spoilReply(&m_faults, {QStringLiteral("live")}, reply);
            });
        }
    };
    doAndWait(wire, startLimitMs, start,
              [this] { return m_live.state() != LiveStream::State::Starting; });
    if (m_live.state() != LiveStream::State::On)
        return {};
    const QString url = QStringLiteral("http://%1:%2/live.ts").arg(address()).arg(m_setup.livePort);
    if (srtPort == 0)
        return url;
    QMetaObject::invokeMethod(this, [this, url, srtPort] { m_srt.start(url, address(), srtPort); });
    return QStringLiteral("srt://%1:%2").arg(address()).arg(srtPort);
}

void BoxCore::stopLive()
{
    QMetaObject::invokeMethod(this, [this] {
        m_srt.stop();
        m_live.stop();
    });
}

void BoxCore::removeFile(const Recording& recording)
{
    if (!recording.path.isEmpty())
        QFile::remove(recording.path);
}

QStringList BoxCore::streamMessages(int tick) const
{
    const qint64 recorded = m_recorder.elapsedMs();
    if (recorded > 0)
        return {QStringLiteral("{\"event\":\"record\",\"record_ms\":%1}").arg(recorded)};
    if (tick % ticksPerSecond != 0)
        return {};
    const BoxActivity activity = m_state.activity();
    const auto flag = [](bool on) { return on ? QStringLiteral("true") : QStringLiteral("false"); };
    return {QStringLiteral("{\"event\":\"stream\",\"ndi\":%1,\"ndi_hx\":%2,\"kbps\":%3,\"fps\":50}")
                .arg(flag(activity.fullEncoder), flag(activity.compressedEncoder),
                     m_state.parameter(QStringLiteral("eParam_NDIHXBitRate")))};
}

QStringList BoxCore::mediaMessages(int tick) const
{
    if (tick % ticksPerSecond != 0)
        return {};
    const int second = tick / ticksPerSecond;
    const auto level = [second](double phase) {
        return QString::number(-18.0 + 6.0 * std::sin(second + phase), 'f', 1);
    };
    return {QStringLiteral("{\"event\":\"media\",\"input\":\"1920x1080p50\",\"audio_db\":[%1,%2]}")
                .arg(level(0.0), level(1.0))};
}

} // namespace sim
