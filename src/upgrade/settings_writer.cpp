// SPDX-License-Identifier: MIT
#include "upgrade/settings_writer.h"

#include "common/box_protocol.h"
#include "common/box_reply.h"
#include "common/http_result.h"
#include "upgrade/box_answer.h"
#include "upgrade/kept_settings.h"

namespace
{

constexpr int silencesWhenLost = 3;

} // namespace

void SettingsWriter::start(const QString& ip, const QString& mac, const QVariantMap& values,
                           Done done)
{
    stop();
    m_ip = ip;
    m_mac = mac;
    m_values = values;
    m_rest = values.keys();
    m_outcome = {};
    m_silences = 0;
    m_done = std::move(done);
    writeNext();
}

void SettingsWriter::stop()
{
    m_listener.forget();
    m_done = nullptr;
}

void SettingsWriter::writeNext()
{
    if (m_rest.isEmpty()) {
        m_rest = m_values.keys();
        checkNext();
        return;
    }
    m_link.read(m_ip, BoxProtocol::MACAddress, m_listener.hear([this](const QString& answer) {
        const HttpResult who = HttpResult::fromBody(answer);
        // One lost packet, or error, is no lost box.
        if (BoxAnswer::mac(answer).isEmpty() && ++m_silences < silencesWhenLost) {
            writeNext();
            return;
        }
        m_silences = 0;
        m_outcome.lost = !BoxProtocol::isSameMac(who.value.toString(), m_mac);
        if (m_outcome.lost)
            finish();
        else
            write(m_rest.takeFirst());
    }));
}

void SettingsWriter::write(const QString& name)
{
    m_link.write(m_ip, name, m_values.value(name).toString(),
                 m_listener.hear([this, name](const QString& answer) {
                     if (!BoxReply(answer).isSetSuccess())
                         m_outcome.refused << name;
                     writeNext();
                 }));
}

void SettingsWriter::checkNext()
{
    if (m_rest.isEmpty()) {
        finish();
        return;
    }
    const QString name = m_rest.takeFirst();
    m_link.read(m_ip, name, m_listener.hear([this, name](const QString& answer) {
        const HttpResult now = HttpResult::fromBody(answer);
        const bool isTold = now.parameterName == name && KeptSettings::isValue(now.value);
        // What was refused has failed already, whatever it is now.
        const bool isOpen = !m_outcome.refused.contains(name);
        if (isOpen && !isTold)
            m_outcome.unread << name;
        else if (isOpen && now.value.toString() != m_values.value(name).toString())
            m_outcome.different << name;
        checkNext();
    }));
}

void SettingsWriter::finish()
{
    const Done done = std::move(m_done);
    const Outcome outcome = m_outcome;
    stop();
    done(outcome);
}
