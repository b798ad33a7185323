// SPDX-License-Identifier: MIT
#include "common/command_runner.h"

#include "common/box_protocol.h"
#include "common/json_map.h"
#include "common/limit_log.h"
#include "common/limits.h"
#include "common/operation_log.h"
#include "common/platform.h"

#include <QCoreApplication>
#include <QDebug>
#include <QEventLoop>
#include <QPointer>
#include <QQueue>
#include <QSet>
#include <QTimer>

#include <memory>

namespace
{

constexpr const char* replyLimit = "bytes of a reply to a command";
constexpr const char* stoppedMark = "stopped";
constexpr const char* replyProperty = "reply";
constexpr const char* repliedMark = "replied";

/// A box is spoken to directly, whatever the user's files and environment say.
const QStringList& directly()
{
    static const QStringList arguments{QStringLiteral("-q"), QStringLiteral("--noproxy"),
                                       QStringLiteral("*")};
    return arguments;
}

bool isWhole(const QByteArray& reply)
{
    return reply.trimmed().endsWith('}') && jsonObject(reply).has_value();
}

/// What `process` has said that was not taken yet.
QByteArray collected(QProcess* process)
{
    return process->property(replyProperty).toByteArray() + process->readAllStandardOutput();
}

/// Commands that run on their own, so that none outlives the program.
QSet<QProcess*>& running()
{
    static QSet<QProcess*> processes;
    return processes;
}

/// curl writes its progress there, for hours in a long transfer.
void discardErrorOutput(QProcess* process)
{
    process->setStandardErrorFile(QProcess::nullDevice());
}

void start(QProcess* process, const QString& command)
{
    process->setReadChannel(QProcess::StandardOutput);
    QStringList arguments = QProcess::splitCommand(command);
    QString program = arguments.isEmpty() ? QString() : arguments.takeFirst();
    if (program == QLatin1String("curl")) {
        program = Platform::curlPath();
        arguments = directly() + arguments;
    }
    const Platform::ChildInput input = Platform::curlInput(arguments);
    if (!input.folder.isEmpty())
        process->setWorkingDirectory(input.folder);
    if (!input.standardInputFile.isEmpty())
        process->setStandardInputFile(input.standardInputFile);
    if (!input.standardOutputFile.isEmpty())
        process->setStandardOutputFile(input.standardOutputFile,
                                       input.appends ? QIODevice::Append : QIODevice::Truncate);
    process->start(program, input.arguments, QIODevice::ReadWrite);
    process->write(input.standardInput);
    process->closeWriteChannel();
}

/// Starts processes one after the other, each in a turn of its own: that takes the thread some
/// milliseconds, and until the new process has become another program it shares this one's memory.
class StartQueue : public QObject
{
public:
    explicit StartQueue(QObject* parent) : QObject(parent)
    {
        m_turn.setSingleShot(true);
        connect(&m_turn, &QTimer::timeout, this, &StartQueue::startNext);
    }

    void add(QProcess* process, const QString& command)
    {
        m_waiting.enqueue({process, command});
        if (!m_starting && !m_turn.isActive())
            startNext();
    }

    /// Forgets all that wait and the one that starts, whoever deletes them.
    void clear()
    {
        m_waiting.clear();
        m_starting = nullptr;
        m_turn.stop();
    }

private:
    struct Waiting {
        QPointer<QProcess> process;
        QString command;
    };

    void startNext()
    {
        while (!m_waiting.isEmpty()) {
            const Waiting next = m_waiting.dequeue();
            if (next.process) {
                startOne(next.process, next.command);
                return;
            }
        }
    }

    void startOne(QProcess* process, const QString& command)
    {
        m_starting = process;
        connect(process, &QProcess::stateChanged, this, [this, process](QProcess::ProcessState s) {
            if (s != QProcess::Starting)
                settled(process);
        });
        connect(process, &QObject::destroyed, this, [this, process] { settled(process); });
        start(process, command);
        // As one that has run: its owner hears of its end.
        if (process->property(stoppedMark).toBool())
            process->kill();
        if (process->state() == QProcess::NotRunning)
            settled(process);
    }

    void settled(const QObject* process)
    {
        if (m_starting != process)
            return;
        m_starting = nullptr;
        m_turn.start(0);
    }

    QQueue<Waiting> m_waiting;
    const QObject* m_starting = nullptr;
    QTimer m_turn;
};

StartQueue& startQueue()
{
    static QPointer<StartQueue> queue;
    if (!queue)
        queue = new StartQueue(QCoreApplication::instance());
    return *queue;
}

void releaseWhenEnded(QProcess* process)
{
    running().insert(process);
    QObject::connect(process, &QProcess::stateChanged, process,
                     [process](QProcess::ProcessState state) {
                         if (state != QProcess::NotRunning)
                             return;
                         running().remove(process);
                         process->deleteLater();
                     });
}

} // namespace

CommandRunner::CommandRunner(QString owner, Wire wire)
    : m_owner(std::move(owner)), m_wire(std::move(wire))
{
}

QPointer<QProcess> CommandRunner::execCurl(const QString& ip, const QString& command,
                                           const QVariantMap& properties, ErrorOutput errorOutput)
{
    QProcess* process = Platform::newModestProcess();
    if (errorOutput == ErrorOutput::Discard)
        discardErrorOutput(process);
    process->setProperty("ip", ip);
    process->setProperty(ActionProperty, BoxProtocol::actionOf(command));
    log(ip, process, QStringLiteral("  执行Curl   ") + command, __LINE__, "execCurl");
    qDebug().noquote() << process << "执行Curl   " << logClip(command);
    for (auto it = properties.cbegin(); it != properties.cend(); ++it)
        process->setProperty(it.key().toUtf8().constData(), it.value());
    m_wire(process);
    releaseWhenEnded(process);
    startQueue().add(process, command);
    return process;
}

void CommandRunner::limit(QProcess* process, int limitMs)
{
    const auto count = [process, limitMs] {
        QTimer::singleShot(limitMs, process, &QProcess::kill);
    };
    // Where starting blocks, it has started before anybody could ask to be told.
    if (process->state() == QProcess::Running)
        count();
    else
        QObject::connect(process, &QProcess::started, process, count);
}

void CommandRunner::stop(QProcess* process)
{
    process->setProperty(stoppedMark, true);
    process->kill();
}

QString CommandRunner::execCurlWait(const QString& ip, const QString& command)
{
    QEventLoop loop;
    const std::unique_ptr<QProcess> owned(Platform::newProcess());
    QProcess& process = *owned;
    QByteArray output;
    discardErrorOutput(&process);
    log(ip, &process, QStringLiteral("  执行Curl   ") + command, __LINE__, "execCurlWait");
    qDebug().noquote() << &process << "执行Curl   " << logClip(command);

    const auto collect = [&] {
        output += process.readAllStandardOutput();
        if (output.size() > Limits::CommandReplyBytes)
            process.kill();
    };
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &loop, collect);
    QObject::connect(&process, &QProcess::stateChanged, &loop, [&](QProcess::ProcessState state) {
        if (state != QProcess::NotRunning)
            return;
        collect();
        loop.quit();
    });
    bool answered = true;
    QTimer::singleShot(WaitLimitMs, &loop, [&] {
        // Another wait nested in this one may have kept the loop from ending in time.
        if (process.state() == QProcess::NotRunning)
            return;
        answered = false;
        process.kill();
    });

    start(&process, command);
    // A program that cannot be started has ended before the loop could be told to.
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    process.disconnect(&loop);
    if (process.state() != QProcess::NotRunning) {
        // The program is closing: the loop ended, the command did not.
        process.kill();
        process.waitForFinished(1000);
        answered = false;
    }

    const bool isTooLong = output.size() > Limits::CommandReplyBytes;
    if (isTooLong)
        limitReached(ip, QString::fromLatin1(replyLimit));
    if (!answered || isTooLong)
        output.clear();
    const QString reply = QString::fromLocal8Bit(output);
    log(ip, &process, QStringLiteral("  执行Curl返回数据   ") + reply, __LINE__, "execCurlWait");
    qDebug().noquote() << &process << "执行Curl返回数据     " << logClip(reply);
    return reply;
}

QString CommandRunner::takeReply(QProcess* process) const
{
    const QByteArray reply = collected(process);
    // Whatever comes behind it is none.
    if (process->property(repliedMark).toBool())
        return QString();
    const bool isTooLong = reply.size() > Limits::CommandReplyBytes;
    const bool isReply = !isTooLong && isWhole(reply);
    process->setProperty(repliedMark, isTooLong || isReply);
    process->setProperty(replyProperty, isTooLong || isReply ? QByteArray() : reply);
    if (isTooLong) {
        limitReached(process->property("ip").toString(), QString::fromLatin1(replyLimit));
        process->kill();
    }
    return isReply ? logged(process, reply) : QString();
}

QString CommandRunner::takeRest(QProcess* process) const
{
    const QByteArray rest = collected(process).left(Limits::CommandReplyBytes);
    process->setProperty(replyProperty, QByteArray());
    const bool isOver = process->property(repliedMark).toBool();
    return isOver || rest.isEmpty() ? QString() : logged(process, rest);
}

QString CommandRunner::logged(QProcess* process, const QByteArray& reply) const
{
    const QString text = QString::fromLocal8Bit(reply);
    log(process->property("ip").toString(), process, QStringLiteral("  执行Curl返回数据   ") + text,
        __LINE__, "R_readyReadStandardOutput");
    qDebug().noquote() << process << "执行Curl返回数据     " << logClip(text);
    return text;
}

void CommandRunner::noteEnd(QProcess* process) const
{
    log(process->property("ip").toString(), process, QStringLiteral("  执行Curl 停止 "), __LINE__,
        "R_stateChanged");
    qDebug().noquote() << process << "执行Curl 停止  ";
}

void CommandRunner::endAll()
{
    startQueue().clear();
    const QSet<QProcess*> processes = running();
    for (QProcess* process : processes) {
        process->disconnect();
        process->kill();
    }
    for (QProcess* process : processes) {
        process->waitForFinished(1000);
        delete process;
    }
    running().clear();
}

void CommandRunner::log(const QString& ip, const QObject* process, const QString& event, int line,
                        const char* function) const
{
    const QString identity = QString::number(reinterpret_cast<quintptr>(process));
    writeLog(ip, logLine(identity + event, "src/common/command_runner.cpp", line,
                         m_owner + QStringLiteral("::") + QString::fromLatin1(function)));
}
