// SPDX-License-Identifier: MIT
#include "upgrade/configuration_restore.h"

#include "common/box_protocol.h"
#include "common/box_reply.h"
#include "common/http_result.h"
#include "common/operation_log.h"
#include "common/spark_http.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "upgrade/kept_settings.h"

#include <QTimer>

namespace
{

constexpr int mostAtOnce = 8;

} // namespace

ConfigurationRestore::ConfigurationRestore(TreeModel& devices, Spark_Http& http,
                                           CommandRunner& runner, KeptSettings& kept, Permit permit)
    : QObject(nullptr)
    , m_devices(devices)
    , m_http(http)
    , m_restarts(runner)
    , m_kept(kept)
    , m_permit(std::move(permit))
    , m_runner(QStringLiteral("Tarn_Hub"), [this](QProcess* process) {
        connect(process, &QProcess::stateChanged, this,
                [this, process](QProcess::ProcessState state) {
                    if (state == QProcess::NotRunning)
                        commandEnded(process);
                });
        connect(process, &QProcess::started, process, [process] {
            QTimer::singleShot(CommandRunner::WaitLimitMs, process, &QProcess::kill);
        });
    })
{
}

ConfigurationRestore::~ConfigurationRestore() = default;

void ConfigurationRestore::boxSeen(const QString& ip, const QString& mac)
{
    if (!BoxProtocol::isMacAddress(mac) || !m_kept.isWaiting(mac) || m_running.count(mac) > 0 ||
        !m_permit(mac, ip))
        return;
    m_kept.removeWaiting(mac);
    m_queue.enqueue({mac, ip});
    startQueued();
}

void ConfigurationRestore::startQueued()
{
    while (!m_queue.isEmpty() && int(m_running.size()) < mostAtOnce) {
        const auto [mac, ip] = m_queue.dequeue();
        begin(mac, ip);
    }
}

void ConfigurationRestore::begin(const QString& mac, const QString& ip)
{
    WriteBack job;
    job.ip = ip;
    job.values = m_kept.values(mac);
    job.rest = job.values.keys();
    if (Item* box = m_devices.find(ip))
        box->setConfigurationToRestore(job.values);
    m_running[mac] = std::move(job);
    writeNext(mac);
}

void ConfigurationRestore::writeNext(const QString& mac)
{
    const WriteBack& job = m_running.at(mac);
    if (job.rest.isEmpty()) {
        checkAll(mac);
        return;
    }
    const QString name = job.rest.first();
    const QString value = BoxProtocol::escapeEquals(job.values.value(name).toString());
    m_runner.execCurl(job.ip, BoxProtocol::setCommand(name, value, job.ip),
                      {{QStringLiteral("mac"), mac}});
}

void ConfigurationRestore::commandEnded(QProcess* process)
{
    const QString mac = process->property("mac").toString();
    const BoxReply reply(m_runner.takeReply(process));
    m_runner.noteEnd(process);
    const auto found = m_running.find(mac);
    if (found == m_running.end())
        return;
    WriteBack& job = found->second;
    const QString name = job.rest.takeFirst();
    if (!reply.isSetSuccess())
        job.failed << name;
    // A program that cannot start ends within its start.
    QTimer::singleShot(0, this, [this, mac] { writeNext(mac); });
}

/// Reads everything again: a box may report success and still have understood something else.
void ConfigurationRestore::checkAll(const QString& mac)
{
    WriteBack& job = m_running.at(mac);
    job.rest = job.values.keys();
    if (job.rest.isEmpty() || !job.failed.isEmpty()) {
        finish(mac);
        return;
    }
    const QStringList names = job.rest;
    const QString ip = job.ip;
    for (const QString& name : names)
        m_http.get(checkType() + name + QLatin1Char('/') + mac, BoxProtocol::readUrl(ip, name),
                   false);
}

void ConfigurationRestore::handleCheck(const HttpResult& result)
{
    const QString key = result.type.mid(checkType().size());
    const QString name = key.section(QLatin1Char('/'), 0, 0);
    const QString mac = key.section(QLatin1Char('/'), 1);
    const auto found = m_running.find(mac);
    if (found == m_running.end() || !found->second.rest.removeOne(name))
        return;
    WriteBack& job = found->second;
    if (result.parameterName != name || !KeptSettings::isValue(result.value))
        job.unread = true;
    else if (result.value.toString() != job.values.value(name).toString())
        job.different << name;
    if (job.rest.isEmpty())
        finish(mac);
}

void ConfigurationRestore::finish(const QString& mac)
{
    const WriteBack done = m_running.at(mac);
    m_running.erase(mac);
    if (!done.failed.isEmpty()) {
        finishWithFailures(mac, done);
    } else {
        m_kept.takeLastTry(mac);
        m_restarts.execCurl(done.ip, BoxProtocol::rebootCommand(done.ip), {});
        emit ended(mac,
                   !done.different.isEmpty() ? UpgradeRow::Settings::SomeFailed
                   : done.unread             ? UpgradeRow::Settings::Unverified
                                             : UpgradeRow::Settings::Restored,
                   done.different);
        emit succeeded(done.ip);
    }
    startQueued();
}

void ConfigurationRestore::finishWithFailures(const QString& mac, const WriteBack& done)
{
    writeLog(done.ip,
             logLine(QStringLiteral("  恢复设置失败   ") + done.failed.join(QLatin1Char(' ')),
                     "src/upgrade/configuration_restore.cpp", __LINE__,
                     QStringLiteral("ConfigurationRestore::finish")));
    if (m_kept.takeLastTry(mac)) {
        emit ended(mac, UpgradeRow::Settings::SomeFailed, done.failed);
        emit failed(done.ip);
        return;
    }
    m_restarts.execCurl(done.ip, BoxProtocol::rebootCommand(done.ip), {});
    m_kept.addLastTry(mac);
    emit restarting(mac);
}

void ConfigurationRestore::resume(const QMap<QString, QVariantMap>& saved)
{
    for (auto it = saved.cbegin(); it != saved.cend(); ++it) {
        m_kept.setValues(it.key(), it.value());
        m_kept.addWaiting(it.key());
    }
}
