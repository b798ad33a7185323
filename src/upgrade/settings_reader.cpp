// SPDX-License-Identifier: MIT
#include "upgrade/settings_reader.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "upgrade/kept_settings.h"

namespace
{

constexpr int longestReadPauseTicks = 8;
/// The most that is told between two questions who it is: each costs a batch time, and what comes
/// between them must have come from one box.
constexpr int mostTold = 4;

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
    m_asking = true;
    if (m_sure && m_told.size() < mostTold && !m_missing.isEmpty())
        read(m_missing.first());
    else
        confirm();
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
    m_missing.removeOne(name);
    // A box that says that it has no such parameter has answered, too.
    if (hasValue || (isAnswer && !result.value.isValid())) {
        m_told.append({name, hasValue ? result.value : QVariant()});
        goOn();
        return;
    }
    // The others first: it may be this one that is never told.
    m_missing << name;
    pause();
}

void SettingsReader::pause()
{
    m_sure = false;
    const int ticks = qMin(1 << qMin(m_failures++, longestReadPauseTicks), longestReadPauseTicks);
    m_next = m_clock.ms() + qint64(ticks) * m_clock.tickMs();
}

void SettingsReader::finish(bool whole)
{
    const Done done = std::move(m_done);
    stop();
    done(m_values, whole);
}
