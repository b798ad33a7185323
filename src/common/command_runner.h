// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QString>
#include <QVariantMap>

#include <functional>

/// Runs the complete `curl` command lines of one owner (the window or a device item) and logs every
/// start, reply and end under the box's address.
///
/// A command that runs on its own is a process owned by nobody: it deletes itself when it ends,
/// even if the owner has gone meanwhile. GUI thread only.
class CommandRunner
{
public:
    /// Connects a new process's signals to the owner's slots, before it starts.
    using Wire = std::function<void(QProcess* process)>;

    /// `owner` is the class name that appears in the log, e.g. "Tarn_Hub".
    CommandRunner(QString owner, Wire wire);

    /// The longest that execCurlWait() waits, in milliseconds. A healthy box answers within a few
    /// hundredths of a second and at most about one second while its encoder restarts; twelve
    /// writes to a box that is switched off still end in under 40 s.
    static constexpr int WaitLimitMs = 3000;

    /// The property of a process with the name of its command, as its reply repeats it.
    static constexpr const char* ActionProperty = "action";

    /// What becomes of a command's error output, where curl reports its progress.
    enum class ErrorOutput {
        Discard,
        Deliver, ///< the owner reads it from the process as it comes
    };

    /// Lets `command` start and returns at once. The process carries "ip" and every entry of
    /// `properties` as dynamic properties. Commands start in the order of their calls, at most one
    /// in each turn of the event loop: sixty boxes may ask for one in the same moment.
    /// The process deletes itself once it has ended.
    QPointer<QProcess> execCurl(const QString& ip, const QString& command,
                                const QVariantMap& properties,
                                ErrorOutput errorOutput = ErrorOutput::Discard);

    /// Blocks, serving events: starts `command` and waits until it ends. Returns its standard
    /// output, empty when it could not start or gave no answer within WaitLimitMs. Anything can
    /// happen meanwhile: callers take the address and the values before the call and re-check
    /// afterwards.
    QString execCurlWait(const QString& ip, const QString& command);

    /// An order of the operator is for now: one that reaches its box later than this after its
    /// start, in milliseconds, would come as a surprise, maybe in the middle of an upgrade.
    static constexpr int OrderLimitMs = 10000;

    /// For the owner's wire: ends the process so long after its start.
    static void limit(QProcess* process, int limitMs);

    /// Ends `process`, one of execCurl(), also while it still waits for its start: then it ends
    /// before it does anything.
    static void stop(QProcess* process);

    /// For the owner's output slot: the reply of `process` as soon as it has arrived as a whole,
    /// which is logged; else empty. A command has one reply; one that is too long ends its process.
    QString takeReply(QProcess* process) const;
    /// Once `process` is not running any more: what it said that was no reply, logged.
    QString takeRest(QProcess* process) const;

    /// For the owner's state slot, once `process` is not running any more: logs the end. The
    /// process deletes itself.
    void noteEnd(QProcess* process) const;

    /// Ends every command still running and waits for it; for the end of the program.
    static void endAll();

private:
    QString logged(QProcess* process, const QByteArray& reply) const;
    void log(const QString& ip, const QObject* process, const QString& event, int line,
             const char* function) const;

    const QString m_owner;
    const Wire m_wire;
};
