// SPDX-License-Identifier: MIT
#include "upgrade/settings_reader.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "upgrade/kept_settings.h"

#include <algorithm>

namespace
{

constexpr int longestReadPauseTicks = 8;
/// The most that is told between two questions who it is: each costs a batch time, and what comes
/// between them must have come from one box.
constexpr int mostTold = 4;
/// Between the first time that a box says that it lacks a parameter and the next.
constexpr int deniedTicks = 15;

} // namespace

void SettingsReader::start(const QString& ip, const QString& mac, int limitTicks, Done done,
                           int pauseTicks)
{
    stop();
    m_ip = ip;
    m_mac = mac;
    m_missing = BoxProtocol::configurationParameters();
    m_values.clear();
    m_told.clear();
    m_denied.clear();
    m_isHurried = false;
    m_failures = 0;
    m_sure = false;
    m_done = std::move(done);
    m_limit = m_clock.ms() + qint64(limitTicks) * m_clock.tickMs();
    m_next = m_clock.ms() + qint64(pauseTicks) * m_clock.tickMs();
    if (pauseTicks == 0)
        goOn();
}

void SettingsReader::hurry(int limitTicks)
{
    m_isHurried = true;
    m_limit = qMin(m_limit, m_clock.ms() + qint64(limitTicks) * m_clock.tickMs());
    if (!m_asking)
        goOn();
}

void SettingsReader::stop()
{
    m_listener.forget();
    m_asking = false;
    m_done = nullptr;
}

void SettingsReader::tick()
{
    if (!m_done || m_asking)
        return;
    if (m_clock.ms() >= m_limit)
        finish(false);
    else if (m_clock.ms() >= m_next)
        goOn();
}

void SettingsReader::goOn()
{
    // A box that answers slowly, but always, would never be found not to be asked: tick() ends it.
    m_asking = m_clock.ms() < m_limit;
    if (!m_asking)
        return;
    const QString next = due();
    if (m_sure && m_told.size() < mostTold && !next.isEmpty())
        read(next);
    else if (!m_sure || !m_told.isEmpty() || m_missing.isEmpty())
        confirm();
    else
        waitForDenied();
}

bool SettingsReader::isDue(const QString& name) const
{
    return m_isHurried || !m_denied.contains(name) ||
           m_clock.ms() >= m_denied[name] + qint64(deniedTicks) * m_clock.tickMs();
}

/// What is to be read next; empty when nothing is, or not yet.
QString SettingsReader::due() const
{
    const auto found = std::find_if(m_missing.begin(), m_missing.end(),
                                    [this](const QString& name) { return isDue(name); });
    return found == m_missing.end() ? QString() : *found;
}

void SettingsReader::waitForDenied()
{
    m_asking = false;
    m_sure = false;
    m_next = m_limit;
    for (const QString& name : qAsConst(m_missing))
        m_next = qMin(m_next, m_denied[name] + qint64(deniedTicks) * m_clock.tickMs());
}

void SettingsReader::confirm()
{
    if (m_mac.isEmpty()) {
        keep();
        return;
    }
    m_link.read(m_ip, BoxProtocol::MACAddress, m_listener.hear([this](const QString& answer) {
        m_asking = false;
        const QString mac = HttpResult::fromBody(answer).value.toString();
        if (BoxProtocol::isSameMac(mac, m_mac)) {
            keep();
        } else if (BoxProtocol::isMacAddress(mac)) {
            finish(false);
        } else {
            forgetTold();
            pause();
        }
    }));
}

/// What was told came from the box that was asked before and after it.
void SettingsReader::keep()
{
    m_sure = true;
    for (const auto& [name, value] : qAsConst(m_told)) {
        if (value.isValid())
            m_values.insert(name, value.toString());
        m_failures = 0;
    }
    m_told.clear();
    if (m_missing.isEmpty())
        finish(!m_values.isEmpty());
    else
        goOn();
}

/// Nobody knows who told it: it is asked again.
void SettingsReader::forgetTold()
{
    for (const auto& told : qAsConst(m_told))
        m_missing << told.first;
    m_told.clear();
}

void SettingsReader::read(const QString& name)
{
    m_link.read(m_ip, name,
                m_listener.hear([this, name](const QString& answer) { take(name, answer); }));
}

void SettingsReader::take(const QString& name, const QString& answer)
{
    m_asking = false;
    const HttpResult result = HttpResult::fromBody(answer);
    const bool isAnswer = result.parameterName == name;
    const bool hasValue = isAnswer && KeptSettings::isValue(result.value);
    const bool isDenied = isAnswer && !result.value.isValid();
    m_missing.removeOne(name);
    // A box that says that it has no such parameter has answered, too.
    if (hasValue || (isDenied && isBelieved(name))) {
        m_told.append({name, hasValue ? result.value : QVariant()});
        goOn();
        return;
    }
    // The others first: it may be this one that is never told.
    m_missing << name;
    if (isDenied)
        goOn();
    else
        pause();
}

/// False the first time.
bool SettingsReader::isBelieved(const QString& name)
{
    if (m_isHurried || m_denied.contains(name))
        return true;
    m_denied[name] = m_clock.ms();
    return false;
}

void SettingsReader::pause()
{
    m_sure = false;
    // It may have started anew meanwhile; one lost answer is nothing.
    if (m_failures > 0)
        m_denied.clear();
    const int ticks = qMin(1 << qMin(m_failures++, longestReadPauseTicks), longestReadPauseTicks);
    m_next = m_clock.ms() + qint64(ticks) * m_clock.tickMs();
}

void SettingsReader::finish(bool whole)
{
    const Done done = std::move(m_done);
    stop();
    done(m_values, whole);
}
