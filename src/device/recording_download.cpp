// SPDX-License-Identifier: MIT
#include "device/recording_download.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "common/spark_http.h"

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

/// How long a disk may take for one piece of work before it counts as gone, in milliseconds; the
/// operator who has cancelled does not wait for it.
constexpr int diskLimitMs = 20000;
constexpr int cancelLimitMs = 1000;

} // namespace

RecordingDownload::RecordingDownload(const QString& folder, const RecordingSource& source,
                                     const DownloadPatience& patience, QObject* parent)
    : QObject(parent)
    , m_source(source)
    , m_patience(patience)
    , m_runner(QStringLiteral("Item"), [this](QProcess* process) { wire(process); })
    , m_part(std::make_shared<PartFile>(folder, source))
    , m_disk(QStringLiteral("download"))
{
    m_now.path = folder;
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &RecordingDownload::goOn);
    m_diskLimit.setSingleShot(true);
    connect(&m_diskLimit, &QTimer::timeout, this, &RecordingDownload::giveUpDisk);
    connect(Spark_Http::instance(), &Spark_Http::S_finished, this, &RecordingDownload::noteWho);
}

RecordingDownload::~RecordingDownload()
{
    stop();
    // Its end is work on the disk, too.
    m_disk.add([part = std::move(m_part)]() mutable { part.reset(); }, nullptr);
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

/// Lets `work` be done where a disk that hangs holds nobody up, then goes on with `next`.
void RecordingDownload::onPart(std::function<bool(PartFile&)> work, Next next)
{
    struct Done {
        bool isDone = false;
        PartState state;
    };
    const auto done = std::make_shared<Done>();
    ++m_pieces;
    m_diskLimit.start(m_cancelled ? cancelLimitMs : diskLimitMs);
    m_disk.add(
        [part = m_part, work = std::move(work), done] {
            done->isDone = work(*part);
            done->state = part->state();
        },
        [this, done, next, turn = m_turn] {
            // That of a curl that has been told to end goes on.
            if (--m_pieces == 0 && !m_isStopping)
                m_diskLimit.stop();
            if (turn != m_turn)
                return;
            m_isDone = done->isDone;
            m_now = done->state;
            if (next)
                (this->*next)();
        });
}

void RecordingDownload::look(Next next)
{
    onPart([](const PartFile&) { return true; }, next);
}

void RecordingDownload::start()
{
    onPart([](PartFile& part) { return part.open(); }, &RecordingDownload::takeUp);
}

void RecordingDownload::takeUp()
{
    if (!m_isDone) {
        fail(tr("无法写入文件"));
        return;
    }
    m_farthest = m_now.size;
    if (m_farthest == 0)
        attempt();
    else
        pause(m_patience.quietMs);
}

void RecordingDownload::goOn()
{
    look(&RecordingDownload::goOnUnlessItGrew);
}

/// A program that crashed may have left its curl, which still writes: then that one is waited for.
void RecordingDownload::goOnUnlessItGrew()
{
    if (m_now.size == m_lastSize)
        attempt();
    else
        pause(m_patience.quietMs);
}

void RecordingDownload::cancel()
{
    if (m_cancelled)
        return;
    m_cancelled = true;
    ++m_turn;
    m_pause.stop();
    m_question.clear();
    if (m_process)
        stop();
    else
        discard();
}

void RecordingDownload::attempt()
{
    // Its disk may have gone: what begins now would not be a part of it.
    if (m_farthest > 0 && m_now.size == 0 && m_now.isWorthKeeping) {
        fail(tr("无法写入文件"));
        return;
    }
    m_report = CurlReport();
    m_exit = {};
    m_offset = m_now.size;
    m_changed = false;
    m_stalled = false;
    m_isFull = false;
    m_unanswered = false;
    if (m_source.mac.isEmpty())
        transfer();
    else
        m_question = Spark_Http::instance()->get(
            QStringLiteral("downloadIdentity"),
            BoxProtocol::readUrl(m_source.address, BoxProtocol::MACAddress), false);
}

void RecordingDownload::noteWho(const QVariantMap& answer)
{
    if (m_question.isEmpty() || answer.value(QStringLiteral("id")) != m_question)
        return;
    m_question.clear();
    const QString mac = HttpResult::fromMap(answer).value.toString();
    if (BoxProtocol::isSameMac(mac, m_source.mac)) {
        transfer();
    } else if (BoxProtocol::isMacAddress(mac)) {
        fail(tr("此地址上现在是另一台设备"));
    } else {
        m_unanswered = true;
        look(&RecordingDownload::decide);
    }
}

void RecordingDownload::transfer()
{
    m_runner.execCurl(
        m_source.address,
        BoxProtocol::downloadCommand(m_now.partPath, m_source.address, m_source.name, m_offset),
        {{QStringLiteral("exectype"), QStringLiteral("download")},
         {QStringLiteral("saveFile"), m_now.path}},
        CommandRunner::ErrorOutput::Deliver);
}

void RecordingDownload::read()
{
    if (!m_process || m_cancelled || m_changed || m_stalled || m_isFull)
        return;
    m_report.feed(m_process->readAllStandardError());
    noteLength();
    m_stalled = m_report.silentReports() >= m_patience.silentReports;
    if (m_changed || m_stalled)
        stop();
    else
        lookForRoom();
    if (m_process && !m_changed && !m_stalled)
        emit progressed({m_offset + m_report.receivedBytes(), m_now.length, false});
}

void RecordingDownload::noteLength()
{
    const int status = m_report.httpStatus();
    const qint64 total = m_report.totalBytes();
    if (total < 0 || (status != 200 && status != 206 && status != 416))
        return;
    if (m_now.length >= 0) {
        // An answer that begins at the beginning is not written behind what has come.
        m_changed = total != m_now.length;
        return;
    }
    m_now.length = total;
    onPart(
        [total](PartFile& part) {
            part.setLength(total);
            return true;
        },
        nullptr);
}

/// A box may send without end, or as much as it says. Not before it has said that.
void RecordingDownload::lookForRoom()
{
    if (m_report.httpStatus() != 0 && m_pieces == 0)
        onPart(
            [reserve = m_patience.reserve](const PartFile& part) { return part.hasRoom(reserve); },
            &RecordingDownload::stopWithoutRoom);
}

void RecordingDownload::stopWithoutRoom()
{
    m_isFull = m_process && !m_isDone;
    if (m_isFull)
        stop();
}

/// One that writes to a disk that hangs does not end.
void RecordingDownload::stop()
{
    if (!m_process)
        return;
    m_diskLimit.start(m_cancelled ? cancelLimitMs : diskLimitMs);
    m_isStopping = true;
    CommandRunner::stop(m_process);
}

void RecordingDownload::endAttempt(const QProcess& curl)
{
    read();
    m_isStopping = false;
    m_process.clear();
    m_exit = {curl.error() != QProcess::FailedToStart, curl.exitStatus() == QProcess::NormalExit,
              curl.exitCode()};
    if (m_cancelled)
        discard();
    else
        look(&RecordingDownload::decide);
}

void RecordingDownload::decide()
{
    const Outcome outcome = judge();
    if (outcome == Outcome::Whole) {
        onPart([](PartFile& part) { return part.giveName(); }, &RecordingDownload::finish);
    } else if (outcome == Outcome::Changed || outcome == Outcome::NoRange) {
        m_reason = problem();
        onPart([offset = m_offset](PartFile& part) { return part.startOver(offset); },
               &RecordingDownload::pauseUnlessFull);
    } else if (outcome == Outcome::Failed || !mayGoOn()) {
        fail(problem());
    } else {
        pause(retryPauseMs());
    }
}

/// The part has been begun anew.
void RecordingDownload::pauseUnlessFull()
{
    if (!m_isDone)
        fail(tr("无法写入文件"));
    else if (!mayGoOn())
        fail(m_reason);
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
    m_lastSize = m_now.size;
    m_pause.start(ms);
    emit progressed({m_lastSize, m_now.length, true});
}

void RecordingDownload::discard()
{
    onPart(
        [](PartFile& part) {
            part.discard();
            return true;
        },
        &RecordingDownload::endFailed);
}

RecordingDownload::Outcome RecordingDownload::judge() const
{
    const int status = m_report.httpStatus();
    if (!m_exit.hasStarted)
        return Outcome::Failed;
    if (m_unanswered)
        return Outcome::Broken;
    if (m_isFull)
        return Outcome::Failed;
    if (m_changed)
        return Outcome::Changed;
    // There is nothing behind the end of a file that is whole.
    if (status == 416)
        return m_now.isWhole() ? Outcome::Whole : Outcome::Broken;
    const bool isAnswer = status >= 200 && status <= 299;
    if (status != 0 && !isAnswer)
        return status == 404 || m_offset == 0 ? Outcome::Failed : Outcome::Broken;
    if (m_exit.isNormal && m_exit.code == 0 && isAnswer && (m_now.length < 0 || m_now.isWhole()))
        return Outcome::Whole;
    if (m_exit.code == NoRange)
        return Outcome::NoRange;
    // What cannot be gone on with is not tried again.
    if (m_now.length < 0 || m_exit.code == CannotWrite)
        return Outcome::Failed;
    return m_now.size > m_now.length ? Outcome::Changed : Outcome::Broken;
}

QString RecordingDownload::problem() const
{
    const int status = m_report.httpStatus();
    if (!m_exit.hasStarted)
        return tr("无法启动下载程序");
    if (m_unanswered)
        return tr("无法连接设备");
    if (m_isFull)
        return tr("无法写入文件");
    if (m_stalled)
        return tr("设备停止发送数据");
    if (m_changed)
        return tr("设备上的文件已改变");
    if (status == 404)
        return tr("设备上没有此文件");
    if (status != 0 && (status < 200 || status > 299) && status != 416)
        return tr("设备回应错误 %1").arg(status);
    switch (m_exit.code) {
    case CannotConnect:
        return tr("无法连接设备");
    case Partial:
    case NoRange:
    case NoReply:
    case Broken:
        return tr("传输中断，文件不完整");
    case CannotWrite:
        return tr("无法写入文件");
    default:
        return m_report.error().isEmpty()
                   ? tr("下载程序异常结束")
                   : BoxProtocol::fill(tr("下载程序异常结束（%1）"), {m_report.error()});
    }
}

/// Whether another attempt follows: as long as they bring something. Nobody waits for long for one
/// that has brought nothing at all.
bool RecordingDownload::mayGoOn()
{
    constexpr int firstTries = 3;
    m_fruitless = m_now.size > m_farthest ? 0 : m_fruitless + 1;
    m_farthest = qMax(m_farthest, m_now.size);
    return m_fruitless < (m_now.length < 0 ? qMin(firstTries, m_patience.tries) : m_patience.tries);
}

void RecordingDownload::finish()
{
    if (m_isDone)
        emit ended({true, m_now.path, QString(), false});
    else
        fail(tr("无法写入文件"));
}

void RecordingDownload::fail(const QString& reason)
{
    m_reason = reason;
    m_isKept = m_now.isWorthKeeping;
    // The server's excuse, or half a file that nothing could go on with. Data that came with an
    // answer nobody understood stays: it may be all of it.
    const bool isUseless = !m_isKept && m_report.httpStatus() != 0;
    onPart(
        [isUseless](PartFile& part) {
            if (isUseless)
                part.discard();
            part.letGo();
            return true;
        },
        &RecordingDownload::endFailed);
}

void RecordingDownload::endFailed()
{
    if (m_cancelled)
        emit ended({false, m_now.path, QString(), false});
    else
        emit ended({false, m_now.path, m_reason, m_isKept});
}

/// The disk answers nothing. What hangs there is left to itself.
void RecordingDownload::giveUpDisk()
{
    ++m_turn;
    m_pause.stop();
    m_question.clear();
    if (m_process)
        m_process->disconnect(this);
    if (m_cancelled)
        m_part->abandon();
    m_reason = tr("无法写入文件");
    m_isKept = m_now.length >= 0;
    endFailed();
}
