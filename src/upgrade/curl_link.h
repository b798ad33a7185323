// SPDX-License-Identifier: MIT
#pragma once

#include "common/command_runner.h"
#include "upgrade/box_link.h"

#include <QHash>
#include <QObject>
#include <QPointer>

class Spark_Http;
struct HttpResult;

/// The way to boxes on the network: reads by HTTP, everything else by `curl`.
class CurlLink : public QObject, public BoxLink
{
    Q_OBJECT

public:
    explicit CurlLink(Spark_Http& http);
    ~CurlLink() override;

    void read(const QString& ip, const QString& parameter, Answered answered) override;
    void write(const QString& ip, const QString& parameter, const QString& value,
               Answered answered) override;
    void upload(const QString& ip, const QString& file, Answered answered) override;
    void abandonUpload(const QString& ip) override;
    void order(const QString& ip, BoxOrder order, Answered answered) override;

    /// The routing word of its reads. Only answers to them are heard.
    static QString readType() { return QStringLiteral("upgradeRead"); }
    void handleRead(const HttpResult& result);

signals:
    /// How much of the package the box at `ip` has, in percent; -1 when the upload has ended.
    void uploadProgressed(const QString& ip, int percent);

private:
    void watchUpload(const QString& ip, QProcess* process);
    void run(const QString& ip, const QString& command, int limitMs, Answered answered,
             CommandRunner::ErrorOutput errorOutput = CommandRunner::ErrorOutput::Discard);
    void collect(QProcess* process);
    void ended(QProcess* process);

    struct Command {
        Answered answered;
        int limitMs = 0; ///< 0: none
        QString reply;
    };

    Spark_Http& m_http;
    CommandRunner m_runner;
    QHash<QString, Answered> m_reads; ///< by the request's id
    QHash<QProcess*, Command> m_commands;
    QHash<QString, QPointer<QProcess>> m_uploads; ///< by address
    Command m_next;                               ///< of the process that is being made
    QProcess* m_made = nullptr;
};
