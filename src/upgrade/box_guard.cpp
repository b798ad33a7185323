// SPDX-License-Identifier: MIT
#include "upgrade/box_guard.h"

#include "common/box_protocol.h"
#include "upgrade/box_answer.h"
#include "upgrade/upgrade_record.h"

#include <QDebug>

namespace
{

using Settings = UpgradeRow::Settings;
using Stage = UpgradeRow::Stage;

/// What is sent follows the answer who is there at once.
constexpr qint64 sureMs = 1000;

} // namespace

BoxGuard::BoxGuard(const UpgradeSession& session, int row, BoxLink& link, const UpgradeClock& clock)
    : m_session(session), m_index(row), m_link(link), m_clock(clock)
{
}

const UpgradeRow& BoxGuard::row() const
{
    return m_session.rows[m_index];
}

/// Once something is expected of one box, no other is meant.
QString BoxGuard::mac() const
{
    return m_mac.isEmpty() ? row().mac : m_mac;
}

void BoxGuard::expect()
{
    m_mac = row().mac;
    m_saved = row().saved;
}

void BoxGuard::kept(const UpgradeRow& row)
{
    m_keptSettings |= row.settings == Settings::Waiting && !row.saved.isEmpty();
    m_keptOrder |= row.stage == Stage::Activated;
}

void BoxGuard::adopted()
{
    expect();
    kept(row());
    m_ordered = row().stage == Stage::Activated;
    m_orderedAt = qMax<qint64>(1, m_clock.ms());
    m_orderedIp = row().address;
    m_missed = row().wasAway;
    m_changed = !row().versionAfter.isEmpty();
}

bool BoxGuard::refuse(const QString& reason)
{
    if (m_breach.isEmpty()) {
        m_breach = reason;
        qCritical().noquote() << "upgrade of" << row().mac << row().address
                              << "stopped by its guard:" << reason;
    }
    return true;
}

/// The box may still be at work on its package: it has answered all the time since its order, or
/// tells no other version, and the allowance has not passed.
bool BoxGuard::isChanging() const
{
    const bool isOver = m_clock.ms() - m_orderedAt >= qint64(AllowanceTicks) * m_clock.tickMs();
    return m_ordered && !isOver && !(m_missed && m_changed);
}

/// What holds for everything that changes a box.
bool BoxGuard::isRefused(const QString& ip)
{
    if (!m_breach.isEmpty())
        return true;
    if (isChanging())
        return refuse(tr("设备可能仍在更新固件"));
    const bool isSure = m_sureOf == ip && m_clock.ms() - m_sureAt <= sureMs;
    m_sureOf.clear();
    if (!isSure)
        return refuse(tr("未确认此地址上是哪台设备"));
    return false;
}

void BoxGuard::read(const QString& ip, const QString& parameter, Answered answered)
{
    m_link.read(ip, parameter,
                m_listener.hear(
                    [this, ip, parameter, answered = std::move(answered)](const QString& answer) {
                        hear(ip, parameter, answer);
                        answered(answer);
                    }));
}

void BoxGuard::hear(const QString& ip, const QString& parameter, const QString& answer)
{
    const bool isHere = ip == m_orderedIp;
    if (parameter == BoxProtocol::MACAddress) {
        const bool isBox = BoxAnswer::isFrom(answer, mac());
        const bool isOther = !isBox && !BoxAnswer::mac(answer).isEmpty();
        if (isBox) {
            m_sureOf = ip;
            m_sureAt = m_clock.ms();
        } else if (m_sureOf == ip) {
            m_sureOf.clear();
        }
        // An error, or a box that does not tell it yet, is no absence.
        m_missed |= isHere ? answer.isEmpty() || isOther : isBox;
    } else if (parameter == BoxProtocol::FirmVersion) {
        const QString version = BoxAnswer::version(answer);
        m_changed |= !version.isEmpty() && version != row().versionBefore;
    }
}

void BoxGuard::write(const QString& ip, const QString& parameter, const QString& value,
                     Answered answered)
{
    if (isRefused(ip))
        return;
    if (mac().isEmpty()) {
        refuse(tr("不能确定设置属于哪台设备"));
        return;
    }
    const bool isSwitch = row().stage == Stage::Preparing && parameter == BoxProtocol::DHCP;
    const bool isOwn = m_saved.contains(parameter) && value == m_saved.value(parameter).toString();
    if (isSwitch ? !m_keptSettings || value != QLatin1String("1") : !isOwn) {
        refuse(isSwitch ? tr("设置尚未写入磁盘") : tr("写入的不是此设备的设置"));
        return;
    }
    m_ordered = false;
    m_link.write(ip, parameter, value, std::move(answered));
}

void BoxGuard::upload(const QString& ip, const QString& file, Answered answered)
{
    if (isRefused(ip))
        return;
    m_link.upload(ip, file, std::move(answered));
}

void BoxGuard::abandonUpload(const QString& ip)
{
    m_link.abandonUpload(ip);
}

void BoxGuard::order(const QString& ip, BoxOrder order, Answered answered)
{
    if (isRefused(ip))
        return;
    if (order == BoxOrder::Activate) {
        if (m_orderedAt > 0 || !m_keptOrder) {
            refuse(m_keptOrder ? tr("设备已经收到过更新固件的命令")
                               : tr("更新固件的命令尚未写入磁盘"));
            return;
        }
        m_ordered = true;
        m_orderedAt = qMax<qint64>(1, m_clock.ms());
        m_orderedIp = ip;
        m_missed = m_changed = false;
    } else {
        m_ordered = false;
    }
    m_link.order(ip, order, std::move(answered));
}
