// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_watch.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "common/spark_http.h"

namespace
{

constexpr int shortestRoundMs = 500;
constexpr int roundTicks = 2;

} // namespace

UpgradeWatch::UpgradeWatch(Spark_Http& http, int tickMs) : QObject(nullptr), m_http(http)
{
    m_rounds.setInterval(qMax(shortestRoundMs, roundTicks * tickMs));
    connect(&m_rounds, &QTimer::timeout, this, &UpgradeWatch::due);
}

void UpgradeWatch::wake()
{
    if (!m_rounds.isActive())
        m_rounds.start();
}

void UpgradeWatch::rest()
{
    m_rounds.stop();
}

void UpgradeWatch::ask(const QString& mac, const QString& ip)
{
    if (m_asked.contains(mac))
        return;
    m_asked << mac;
    m_http.get(seenType() + mac, BoxProtocol::readUrl(ip, BoxProtocol::MACAddress), false);
}

void UpgradeWatch::askVersion(const QString& mac, const QString& ip)
{
    m_http.get(versionType() + mac, BoxProtocol::readUrl(ip, BoxProtocol::FirmVersion), false);
}

void UpgradeWatch::handleSeen(const HttpResult& result)
{
    const QString mac = result.type.mid(seenType().size());
    m_asked.remove(mac);
    // Another box may have got the address meanwhile.
    if (!mac.isEmpty() && mac.compare(result.value.toString(), Qt::CaseInsensitive) == 0)
        emit answered(result.deviceIp, mac);
    else
        emit missed(mac);
}

void UpgradeWatch::handleVersion(const HttpResult& result)
{
    emit versionTold(result.deviceIp, result.type.mid(versionType().size()),
                     result.value.toString());
}
