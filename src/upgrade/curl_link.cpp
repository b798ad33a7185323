// SPDX-License-Identifier: MIT
#include "upgrade/curl_link.h"

#include "common/box_protocol.h"
#include "common/curl_report.h"
#include "common/http_result.h"
#include "common/spark_http.h"

#include <QTimer>

CurlLink::CurlLink(Spark_Http& http)
    : QObject(nullptr)
    , m_http(http)
    , m_runner(QStringLiteral("BoxUpgrade"), [this](QProcess* made) {
        m_made = made;
        m_commands.insert(made, m_next);
        if (m_next.limitMs > 0)
            CommandRunner::limit(made, m_next.limitMs);
        connect(made, &QProcess::readyReadStandardOutput, this, [this, made] { collect(made); });
        connect(made, &QProcess::stateChanged, this, [this, made](QProcess::ProcessState state) {
            if (state == QProcess::NotRunning)
                ended(made);
        });
    })
{
}

CurlLink::~CurlLink() = default;

void CurlLink::read(const QString& ip, const QString& parameter, Answered answered)
{
    const QString id = m_http.get(readType(), BoxProtocol::readUrl(ip, parameter), false);
    m_reads[id] = std::move(answered);
}

void CurlLink::handleRead(const HttpResult& result)
{
    if (const Answered answered = m_reads.take(result.id))
        // Somebody who answers with an error is there.
        answered(result.body.isEmpty() && result.httpStatus > 0
                     ? QStringLiteral("HTTP %1").arg(result.httpStatus)
                     : result.body);
}

void CurlLink::write(const QString& ip, const QString& parameter, const QString& value,
                     Answered answered)
{
    // A box gets back what it had, to the letter.
    const QString text = BoxProtocol::escapeEquals(BoxProtocol::escapeSeparators(value));
    run(ip, BoxProtocol::setCommand(parameter, text, ip), CommandRunner::WaitLimitMs,
        std::move(answered));
}

void CurlLink::upload(const QString& ip, const QString& file, Answered answered)
{
    run(ip, BoxProtocol::uploadCommand(file, ip), 0, std::move(answered),
        CommandRunner::ErrorOutput::Deliver);
    m_uploads.insert(ip, m_made);
    watchUpload(ip, m_made);
}

void CurlLink::watchUpload(const QString& ip, QProcess* process)
{
    const auto report = std::make_shared<CurlReport>();
    connect(process, &QProcess::readyReadStandardError, this, [this, ip, process, report] {
        report->feed(process->readAllStandardError());
        emit uploadProgressed(ip, qMax(0, report->sentPercent()));
    });
    connect(process, &QProcess::stateChanged, this, [this, ip](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            emit uploadProgressed(ip, -1);
    });
}

void CurlLink::abandonUpload(const QString& ip)
{
    if (QProcess* process = m_uploads.take(ip))
        CommandRunner::stop(process);
}

void CurlLink::order(const QString& ip, BoxOrder order, Answered answered)
{
    const bool activate = order == BoxOrder::Activate;
    run(ip, activate ? BoxProtocol::otaCommand(ip) : BoxProtocol::rebootCommand(ip),
        activate ? 0 : CommandRunner::WaitLimitMs, std::move(answered));
}

void CurlLink::run(const QString& ip, const QString& command, int limitMs, Answered answered,
                   CommandRunner::ErrorOutput errorOutput)
{
    m_next = {std::move(answered), limitMs, {}};
    m_runner.execCurl(ip, command, {}, errorOutput);
    m_next = {};
}

void CurlLink::collect(QProcess* process)
{
    const auto found = m_commands.find(process);
    if (found == m_commands.end())
        return;
    found->reply += m_runner.takeReply(process);
}

void CurlLink::ended(QProcess* process)
{
    collect(process);
    const QString rest = m_runner.takeRest(process);
    m_runner.noteEnd(process);
    const Command command = m_commands.take(process);
    if (!command.answered)
        return;
    // Later, as promised: a program that cannot start ends within its start.
    const QString reply = command.reply.isEmpty() ? rest : command.reply;
    QTimer::singleShot(0, this, [command, reply] { command.answered(reply); });
}
