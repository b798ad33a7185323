// SPDX-License-Identifier: MIT
#include "device/recording_download.h"

#include "common/box_protocol.h"

namespace
{

enum CurlCode {
    CannotConnect = 7,
    Partial = 18,
    CannotWrite = 23,
    NoRange = 33,
    NoReply = 52,
    Broken = 56
};

} // namespace

RecordingDownload::RecordingDownload(const QString& folder, const RecordingSource& source,
                                     const DownloadPatience& patience, QObject* parent)
    : QObject(parent)
    , m_source(source)
    , m_patience(patience)
    , m_part(folder, source)
    , m_runner(QStringLiteral("Item"), [this](QProcess* process) { wire(process); })
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &RecordingDownload::goOn);
}

RecordingDownload::~RecordingDownload()
{
    stop();
}

void RecordingDownload::wire(QProcess* process)
{
    m_process = process;
    connect(process, &QProcess::readyReadStandardError, this, &RecordingDownload::read);
    connect(process, &QProcess::readyReadStandardOutput, this,
            [this, process] { m_runner.takeReply(process); });
    connect(process, &QProcess::stateChanged, this, [this, process](QProcess::ProcessState state) {
        if (state != QProcess::NotRunning)
            return;
        m_runner.noteEnd(process);
        endAttempt(*process);
    });
}

void RecordingDownload::start()
{
    if (!m_part.open()) {
        fail(tr("无法写入文件"));
        return;
    }
    m_farthest = m_part.size();
    if (m_farthest == 0)
        attempt();
    else
        pause(m_patience.quietMs);
}

/// A program that crashed may have left its curl, which still writes: then that one is waited for.
void RecordingDownload::goOn()
{
    if (m_part.size() == m_lastSize)
        attempt();
    else
        pause(m_patience.quietMs);
}

void RecordingDownload::cancel()
{
    m_cancelled = true;
    if (m_process) {
        stop();
        return;
    }
    m_pause.stop();
    endCancelled();
}

void RecordingDownload::attempt()
{
    // Its disk may have gone: what begins now would not be a part of it.
    if (m_farthest > 0 && m_part.size() == 0 && m_part.isWorthKeeping()) {
        fail(tr("无法写入文件"));
        return;
    }
    m_report = CurlReport();
    m_offset = m_part.size();
    m_changed = false;
    m_stalled = false;
    m_runner.execCurl(
        m_source.address,
        BoxProtocol::downloadCommand(m_part.partPath(), m_source.address, m_source.name, m_offset),
        {{QStringLiteral("exectype"), QStringLiteral("download")},
         {QStringLiteral("saveFile"), m_part.path()}},
        CommandRunner::ErrorOutput::Deliver);
}

void RecordingDownload::read()
{
    if (!m_process || m_cancelled || m_changed || m_stalled)
        return;
    m_report.feed(m_process->readAllStandardError());
    noteLength();
    m_stalled = m_report.silentReports() >= m_patience.silentReports;
    if (m_changed || m_stalled)
        stop();
    else
        emit progressed({m_offset + m_report.receivedBytes(), m_part.length(), false});
}

void RecordingDownload::noteLength()
{
    const int status = m_report.httpStatus();
    const qint64 total = m_report.totalBytes();
    if (total < 0 || (status != 200 && status != 206 && status != 416))
        return;
    if (m_part.length() < 0)
        m_part.setLength(total);
    // An answer that begins at the beginning is not written behind what has come.
    else
        m_changed = total != m_part.length();
}

void RecordingDownload::stop()
{
    if (m_process)
        CommandRunner::stop(m_process);
}

void RecordingDownload::endAttempt(const QProcess& curl)
{
    read();
    m_process.clear();
    if (m_cancelled) {
        endCancelled();
        return;
    }
    const Outcome outcome = judge(curl);
    const QString reason = problem(curl);
    const bool isUseless = outcome == Outcome::Changed || outcome == Outcome::NoRange;
    if (outcome == Outcome::Whole)
        finish();
    else if (isUseless && !m_part.startOver(m_offset))
        fail(tr("无法写入文件"));
    else if (outcome == Outcome::Failed || !mayGoOn())
        fail(reason);
    else
        pause(retryPauseMs());
}

int RecordingDownload::retryPauseMs() const
{
    constexpr int mostDoublings = 10;
    const int ms = m_patience.pauseMs << qMin(m_fruitless, mostDoublings);
    return qMin(ms, m_patience.longestPauseMs);
}

void RecordingDownload::pause(int ms)
{
    m_lastSize = m_part.size();
    m_pause.start(ms);
    emit progressed({m_lastSize, m_part.length(), true});
}

void RecordingDownload::endCancelled()
{
    m_part.discard();
    emit ended({false, m_part.path(), QString(), false});
}

RecordingDownload::Outcome RecordingDownload::judge(const QProcess& curl)
{
    const int status = m_report.httpStatus();
    if (curl.error() == QProcess::FailedToStart)
        return Outcome::Failed;
    if (m_changed)
        return Outcome::Changed;
    // There is nothing behind the end of a file that is whole.
    if (status == 416)
        return m_part.isWhole() ? Outcome::Whole : Outcome::Broken;
    const bool isAnswer = status >= 200 && status <= 299;
    if (status != 0 && !isAnswer)
        return status == 404 || m_offset == 0 ? Outcome::Failed : Outcome::Broken;
    if (curl.exitStatus() == QProcess::NormalExit && curl.exitCode() == 0 && isAnswer &&
        (m_part.length() < 0 || m_part.isWhole()))
        return Outcome::Whole;
    if (curl.exitCode() == NoRange)
        return Outcome::NoRange;
    // What cannot be gone on with is not tried again.
    if (m_part.length() < 0 || curl.exitCode() == CannotWrite)
        return Outcome::Failed;
    return m_part.size() > m_part.length() ? Outcome::Changed : Outcome::Broken;
}

QString RecordingDownload::problem(const QProcess& curl) const
{
    const int status = m_report.httpStatus();
    if (curl.error() == QProcess::FailedToStart)
        return tr("无法启动下载程序");
    if (m_stalled)
        return tr("设备停止发送数据");
    if (m_changed)
        return tr("设备上的文件已改变");
    if (status == 404)
        return tr("设备上没有此文件");
    if (status != 0 && (status < 200 || status > 299) && status != 416)
        return tr("设备回应错误 ") + QString::number(status);
    switch (curl.exitCode()) {
    case CannotConnect:
        return tr("无法连接设备");
    case Partial:
    case NoRange:
    case NoReply:
    case Broken:
        return tr("传输中断,文件不完整");
    case CannotWrite:
        return tr("无法写入文件");
    default:
        return m_report.error().isEmpty() ? tr("下载程序异常结束") : m_report.error();
    }
}

/// Whether another attempt follows: as long as they bring something.
bool RecordingDownload::mayGoOn()
{
    const qint64 size = m_part.size();
    m_fruitless = size > m_farthest ? 0 : m_fruitless + 1;
    m_farthest = qMax(m_farthest, size);
    return m_fruitless < m_patience.tries;
}

void RecordingDownload::finish()
{
    if (m_part.giveName())
        emit ended({true, m_part.path(), QString(), false});
    else
        fail(tr("无法写入文件"));
}

void RecordingDownload::fail(const QString& reason)
{
    const int status = m_report.httpStatus();
    const bool isKept = m_part.isWorthKeeping();
    // The server's excuse, or half a file that nothing could go on with. Data that came with an
    // answer nobody understood stays: it may be all of it.
    if (!isKept && status != 0)
        m_part.discard();
    m_part.letGo();
    emit ended({false, m_part.path(), reason, isKept});
}
