// SPDX-License-Identifier: MIT
#include "ui/upgrade/configuration_restore.h"

#include "common/box_protocol.h"
#include "common/box_reply.h"
#include "common/http_result.h"
#include "common/operation_log.h"
#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/configuration/parameter_panel.h"
#include "ui/hub/hub_state.h"
#include "ui/upgrade/upgrade_report.h"
#include "widgets/message_box.h"

#include <QTimer>
#include <QWidget>

namespace
{

constexpr int saveRounds = 3;
constexpr int networkCount = 3;
constexpr int mostAtOnce = 8;
/// Sixty boxes' replies in the same moment would be seen as a jolt of the window.
constexpr int roundPauseMs = 30;
constexpr int mostYielded = 10;
/// A value that does not fit into a command line of every system is none of a box.
constexpr int longestValue = 8000;

/// What brings a box back to its own address: all three, or none.
QVariantMap networkSettings(const QVariantMap& saved)
{
    QVariantMap network;
    for (const QLatin1String name :
         {BoxProtocol::DHCP, BoxProtocol::IPAddress, BoxProtocol::NetMask}) {
        if (!saved.contains(name))
            return {};
        network.insert(name, saved.value(name));
    }
    return network.value(BoxProtocol::DHCP) == QLatin1String("0") ? network : QVariantMap();
}

bool isText(const QVariant& value)
{
    return (value.type() == QVariant::String || value.type() == QVariant::Double ||
            value.type() == QVariant::LongLong) &&
           value.toString().size() <= longestValue;
}

} // namespace

ConfigurationRestore::ConfigurationRestore(const Hub& hub, ParameterPanel& panel,
                                           UpgradeReport& report)
    : QObject(nullptr)
    , m_hub(hub)
    , m_panel(panel)
    , m_report(report)
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
    m_roundTimer.setInterval(roundPauseMs);
    connect(&m_roundTimer, &QTimer::timeout, this, &ConfigurationRestore::startNextRound);
}

ConfigurationRestore::~ConfigurationRestore() = default;

void ConfigurationRestore::save(const QString& mac, const QString& ip, bool keep,
                                std::function<void()> then)
{
    // Two boxes that tell the same MAC address cannot be told apart: nothing is kept of the second.
    if (!BoxProtocol::isMacAddress(mac) || m_snapshots.count(mac) > 0) {
        then();
        return;
    }
    // Settings that still wait to be written back are the ones to keep: what the box has by now is
    // what the upgrade before left of them.
    const QVariantMap waiting = m_hub.state.savedConfiguration(mac);
    if (keep && m_hub.state.needRestore().contains(mac) && waiting.size() > networkCount) {
        m_report.setSaved(mac, waiting, true);
        then();
        return;
    }
    Snapshot snapshot;
    snapshot.ip = ip;
    snapshot.roundsLeft = keep ? saveRounds : 1;
    if (keep)
        snapshot.then = std::move(then);
    m_snapshots[mac] = std::move(snapshot);
    m_hub.state.setSavedConfiguration(mac, {});
    if (keep && !m_hub.state.needRestore().contains(mac))
        m_hub.state.setNeedRestore(m_hub.state.needRestore() << mac);
    addRound(mac);
    if (!keep)
        then();
}

void ConfigurationRestore::addRound(const QString& mac)
{
    m_rounds.enqueue(mac);
    if (m_roundTimer.isActive())
        return;
    m_roundTimer.start();
}

void ConfigurationRestore::startNextRound()
{
    if (m_rounds.isEmpty()) {
        m_roundTimer.stop();
        return;
    }
    // Uploads go first, but boxes that refuse theirs again and again do not hold up the others.
    if (CommandRunner::isStarting() && ++m_roundsYielded < mostYielded)
        return;
    m_roundsYielded = 0;
    readRound(m_rounds.dequeue());
}

void ConfigurationRestore::readRound(const QString& mac)
{
    Snapshot& snapshot = m_snapshots.at(mac);
    --snapshot.roundsLeft;
    snapshot.outstanding = BoxProtocol::configurationParameters().size();
    m_panel.getConfigDeviceinfo(mac, snapshot.ip);
}

void ConfigurationRestore::handleSaved(const HttpResult& result)
{
    const QString mac = result.type.mid(saveType().size());
    if (!BoxProtocol::isMacAddress(mac))
        return;
    const auto found = m_snapshots.find(mac);
    // Two boxes may claim one address; their settings must not mix.
    if (found != m_snapshots.end() && found->second.ip != result.deviceIp)
        return;
    // A round that is repeated must not read what the first has already changed on the box.
    const bool again =
        found != m_snapshots.end() && found->second.answered.contains(result.parameterName);
    const bool known = BoxProtocol::configurationParameters().contains(result.parameterName);
    const bool hasValue = known && !again && isText(result.value);
    if (hasValue) {
        QVariantMap saved = m_hub.state.savedConfiguration(mac);
        saved.insert(result.parameterName, result.value.toString());
        m_hub.state.setSavedConfiguration(mac, saved);
    }
    if (hasValue && result.parameterName == BoxProtocol::DHCP) {
        m_hub.runner.execCurl(
            result.deviceIp,
            BoxProtocol::setCommand(BoxProtocol::DHCP, QStringLiteral("1"), result.deviceIp), {});
        if (result.value.toString() == QLatin1String("0"))
            m_report.setDhcpForced(mac);
    }
    if (found == m_snapshots.end())
        return;
    // A box that says that it has no such parameter has answered, too.
    if (hasValue || (known && !result.value.isValid()))
        found->second.answered << result.parameterName;
    if (--found->second.outstanding == 0)
        endSnapshot(mac);
}

void ConfigurationRestore::endSnapshot(const QString& mac)
{
    Snapshot& snapshot = m_snapshots.at(mac);
    const bool whole = snapshot.answered.size() == BoxProtocol::configurationParameters().size();
    if (!whole && snapshot.roundsLeft > 0) {
        addRound(mac);
        return;
    }
    const std::function<void()> then = snapshot.then;
    m_snapshots.erase(mac);
    if (!then)
        return;
    QVariantMap saved = m_hub.state.savedConfiguration(mac);
    if (!whole || saved.isEmpty()) {
        // Half of the settings over those of a new firmware would be a mixture that nobody chose.
        // Only what reading them has changed on the box itself is undone.
        saved = networkSettings(saved);
        m_hub.state.setSavedConfiguration(mac, saved);
        if (saved.isEmpty())
            removeFromList(mac);
    }
    m_report.setSaved(mac, saved, whole && !saved.isEmpty());
    then();
}

void ConfigurationRestore::removeFromList(const QString& mac)
{
    QStringList list = m_hub.state.needRestore();
    list.removeAll(mac);
    m_hub.state.setNeedRestore(list);
}

void ConfigurationRestore::handleMac(const QString& ip, const QString& mac)
{
    if (!BoxProtocol::isMacAddress(mac) || !m_hub.state.needRestore().contains(mac) ||
        m_running.count(mac) > 0 || m_snapshots.count(mac) > 0 || !m_report.mayWriteBack(mac, ip))
        return;
    removeFromList(mac);
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
    job.values = m_hub.state.savedConfiguration(mac);
    job.rest = job.values.keys();
    if (Item* box = m_hub.devices.model().find(ip))
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
        m_hub.http.get(checkType() + name + QLatin1Char('/') + mac, BoxProtocol::readUrl(ip, name),
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
    if (result.parameterName != name || !isText(result.value))
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
        QStringList list = m_hub.state.needRestore();
        list.removeAll(mac + QLatin1Char('1'));
        m_hub.state.setNeedRestore(list);
        m_hub.runner.execCurl(done.ip, BoxProtocol::rebootCommand(done.ip), {});
        m_report.setRestored(mac,
                             !done.different.isEmpty() ? UpgradeRow::Settings::SomeFailed
                             : done.unread             ? UpgradeRow::Settings::Unverified
                                                       : UpgradeRow::Settings::Restored,
                             done.different);
        messageBox::notify(tr("%1 恢复设置成功,KORA设备正在重启.").arg(done.ip), m_hub.window);
    }
    startQueued();
}

void ConfigurationRestore::finishWithFailures(const QString& mac, const WriteBack& done)
{
    writeLog(done.ip,
             logLine(QStringLiteral("  恢复设置失败   ") + done.failed.join(QLatin1Char(' ')),
                     "src/ui/configuration_restore.cpp", __LINE__,
                     QStringLiteral("ConfigurationRestore::finish")));
    const QString mark = mac + QLatin1Char('1');
    QStringList list = m_hub.state.needRestore();
    if (list.removeAll(mark) > 0) {
        m_hub.state.setNeedRestore(list);
        m_report.setRestored(mac, UpgradeRow::Settings::SomeFailed, done.failed);
        messageBox::notify(tr("%1 恢复设置失败,已尝试恢复,但任然失败,请检查KORA设备.").arg(done.ip),
                           m_hub.window);
        return;
    }
    m_hub.runner.execCurl(done.ip, BoxProtocol::rebootCommand(done.ip), {});
    m_hub.state.setNeedRestore(list << mac << mark);
    m_report.setRestarting(mac);
}

void ConfigurationRestore::offer(const QMap<QString, QVariantMap>& saved, const QDateTime& when)
{
    const int answer = messageBox::ask(
        tr("上次固件升级中断时,有%1个KORA的设置尚未恢复(保存于%2),"
           "是否在发现这些KORA时恢复? 取消则放弃这些设置.")
            .arg(QString::number(saved.size()), when.toString(QStringLiteral("yyyy-MM-dd HH:mm"))),
        m_hub.window);
    if (!m_hub.window->isVisible())
        return;
    if (answer != messageBox::Confirmed) {
        m_report.dropSettings(saved.keys());
        return;
    }
    QStringList list = m_hub.state.needRestore();
    for (auto it = saved.cbegin(); it != saved.cend(); ++it) {
        m_hub.state.setSavedConfiguration(it.key(), it.value());
        list << it.key();
    }
    m_hub.state.setNeedRestore(list);
}
