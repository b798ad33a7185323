// SPDX-License-Identifier: MIT
#include "upgrade/configuration_snapshot.h"

#include "common/box_protocol.h"
#include "common/command_runner.h"
#include "common/http_result.h"
#include "common/spark_http.h"
#include "upgrade/kept_settings.h"

namespace
{

constexpr int keepRounds = 3;
constexpr int networkCount = 3;
/// Sixty boxes' replies in the same moment would be seen as a jolt of the window.
constexpr int roundPauseMs = 30;
constexpr int mostYielded = 10;

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

} // namespace

ConfigurationSnapshot::ConfigurationSnapshot(Spark_Http& http, CommandRunner& runner,
                                             KeptSettings& kept)
    : QObject(nullptr), m_http(http), m_runner(runner), m_kept(kept)
{
    m_roundTimer.setInterval(roundPauseMs);
    connect(&m_roundTimer, &QTimer::timeout, this, &ConfigurationSnapshot::startNextRound);
}

ConfigurationSnapshot::~ConfigurationSnapshot() = default;

void ConfigurationSnapshot::take(const QString& mac, const QString& ip, bool keep,
                                 std::function<void()> then)
{
    // Two boxes that tell the same MAC address cannot be told apart: nothing is kept of the second.
    if (!BoxProtocol::isMacAddress(mac) || isTaking(mac)) {
        then();
        return;
    }
    // Settings that still wait to be written back are the ones to keep: what the box has by now is
    // what the upgrade before left of them.
    const QVariantMap waiting = m_kept.values(mac);
    if (keep && m_kept.isWaiting(mac) && waiting.size() > networkCount) {
        emit taken(mac, waiting, true);
        then();
        return;
    }
    Box box;
    box.ip = ip;
    box.roundsLeft = keep ? keepRounds : 1;
    if (keep)
        box.then = then;
    m_boxes[mac] = std::move(box);
    m_kept.setValues(mac, {});
    if (keep)
        m_kept.addWaiting(mac);
    addRound(mac);
    if (!keep)
        then();
}

void ConfigurationSnapshot::addRound(const QString& mac)
{
    m_rounds.enqueue(mac);
    if (m_roundTimer.isActive())
        return;
    m_roundTimer.start();
}

void ConfigurationSnapshot::startNextRound()
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

void ConfigurationSnapshot::readRound(const QString& mac)
{
    Box& box = m_boxes.at(mac);
    const QStringList names = BoxProtocol::configurationParameters();
    const QString ip = box.ip;
    --box.roundsLeft;
    box.outstanding = names.size();
    for (const QString& name : names)
        m_http.get(replyType() + mac, BoxProtocol::readUrl(ip, name), false);
}

void ConfigurationSnapshot::handleReply(const HttpResult& result)
{
    const QString mac = result.type.mid(replyType().size());
    if (!BoxProtocol::isMacAddress(mac))
        return;
    const auto found = m_boxes.find(mac);
    // Two boxes may claim one address; their settings must not mix.
    if (found != m_boxes.end() && found->second.ip != result.deviceIp)
        return;
    // A round that is repeated must not read what the first has already changed on the box.
    const bool again =
        found != m_boxes.end() && found->second.answered.contains(result.parameterName);
    const bool known = BoxProtocol::configurationParameters().contains(result.parameterName);
    const bool hasValue = known && !again && KeptSettings::isValue(result.value);
    if (hasValue)
        keepValue(result, mac);
    if (found == m_boxes.end())
        return;
    // A box that says that it has no such parameter has answered, too.
    if (hasValue || (known && !result.value.isValid()))
        found->second.answered << result.parameterName;
    if (--found->second.outstanding == 0)
        end(mac);
}

void ConfigurationSnapshot::keepValue(const HttpResult& result, const QString& mac)
{
    const QString value = result.value.toString();
    QVariantMap values = m_kept.values(mac);
    values.insert(result.parameterName, value);
    m_kept.setValues(mac, values);
    if (result.parameterName != BoxProtocol::DHCP)
        return;
    // The box is to be found again wherever it comes back.
    m_runner.execCurl(
        result.deviceIp,
        BoxProtocol::setCommand(BoxProtocol::DHCP, QStringLiteral("1"), result.deviceIp), {});
    if (value == QLatin1String("0"))
        emit dhcpForced(mac);
}

void ConfigurationSnapshot::end(const QString& mac)
{
    const Box& box = m_boxes.at(mac);
    const bool whole = box.answered.size() == BoxProtocol::configurationParameters().size();
    if (!whole && box.roundsLeft > 0) {
        addRound(mac);
        return;
    }
    const std::function<void()> then = box.then;
    m_boxes.erase(mac);
    if (!then)
        return;
    QVariantMap values = m_kept.values(mac);
    const bool complete = whole && !values.isEmpty();
    if (!complete) {
        // Half of the settings over those of a new firmware would be a mixture that nobody chose.
        // Only what reading them has changed on the box itself is undone.
        values = networkSettings(values);
        m_kept.setValues(mac, values);
        if (values.isEmpty())
            m_kept.removeWaiting(mac);
    }
    emit taken(mac, values, complete);
    then();
}
