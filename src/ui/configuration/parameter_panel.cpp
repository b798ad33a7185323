// SPDX-License-Identifier: MIT
#include "ui/configuration/parameter_panel.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"

#include <QTimer>

namespace
{

const QString requestType = QStringLiteral("getConfigDeviceinfo");
const QString identityType = QStringLiteral("getConfigIdentity");
/// So often a box is read in all while it cannot be told who has answered.
constexpr int mostReadings = 3;
constexpr int readingPauseMs = 500;

/// Text or a number; a list, an object or nothing at all is no value of a parameter.
bool isScalar(const QVariant& value)
{
    return value.type() == QVariant::String || value.type() == QVariant::Double ||
           value.type() == QVariant::LongLong;
}

bool fits(const ParameterBinding& binding, const QVariant& value)
{
    return binding.showList ? value.type() == QVariant::List : isScalar(value);
}

bool isOther(const QString& mac, const QString& known)
{
    return !mac.isEmpty() && !known.isEmpty() && mac.compare(known, Qt::CaseInsensitive) != 0;
}

/// A value that goes out as it was typed, and that a box takes for more than one, or for another.
bool isTakenApart(QString sent)
{
    sent.remove(BoxProtocol::escapeEquals(QStringLiteral("=")));
    return sent.contains(QLatin1Char('&')) || sent.contains(QLatin1Char('%'));
}

/// Who has answered: a MAC address, empty for a box that has none; no value when nobody knows.
std::optional<QString> identityIn(const HttpResult& answer)
{
    const QString mac = answer.value.toString();
    if (answer.isRefusal())
        return QString();
    if (answer.parameterName == BoxProtocol::MACAddress && BoxProtocol::isMacAddress(mac))
        return mac.toUpper();
    return std::nullopt;
}

} // namespace

ParameterPanel::ParameterPanel(const Hub& hub, const ParameterTable& table, QLabel& summary,
                               QWidget& warning)
    : QObject(nullptr)
    , m_hub(hub)
    , m_summary(summary)
    , m_warning(warning)
    , m_read(BoxProtocol::configurationParameters())
{
    for (const ParameterRow& row : table) {
        m_parameters.emplace_back(row);
        if (row.isRead() && !m_read.contains(row.name))
            m_read << row.name;
    }
    watch();
    hub.exchange.onResult(requestType, [this](const HttpResult& result) { handleReply(result); });
    hub.exchange.onResult(identityType,
                          [this](const HttpResult& result) { handleIdentity(result); });
    m_again.setSingleShot(true);
    m_again.setInterval(readingPauseMs);
    connect(&m_again, &QTimer::timeout, this, [this] {
        if (m_ip == m_hub.state.deviceIp())
            read();
    });
    connect(&hub.state, &HubState::koraSelected, this, [this] { m_selectedAnew = true; });
    connect(&hub.state, &HubState::readingWanted, this, &ParameterPanel::getConfigDeviceinfo);
    showStates();
}

void ParameterPanel::watch()
{
    for (ShownParameter& parameter : m_parameters) {
        if (!parameter.row().binding.watch)
            continue;
        parameter.row().binding.watch(this, [this, &parameter] {
            // What others are worth may hang on it.
            if (parameter.look() || parameter.row().name == BoxProtocol::DHCP)
                showStates();
        });
    }
}

void ParameterPanel::getConfigDeviceinfo()
{
    const QString ip = m_hub.state.deviceIp();
    const Item* device = m_hub.findSelectedDevice();
    const QString mac = device ? device->macAddress() : QString();
    const bool again = ip == m_ip && !isOther(mac, m_mac);
    m_ip = ip;
    m_mac = again && mac.isEmpty() ? m_mac : mac;
    m_sameBox = false;
    m_wasNamed = !m_mac.isEmpty();
    for (ShownParameter& parameter : m_parameters) {
        if (!parameter.row().isRead())
            continue;
        if (again)
            // Disabling a field would send its focus, and the keys, to another one.
            parameter.expect(!m_selectedAnew);
        else
            parameter.forget();
    }
    m_selectedAnew = false;
    m_readings = 0;
    read();
    showStates();
}

void ParameterPanel::read()
{
    ++m_readings;
    m_again.stop();
    m_asked.clear();
    m_held.clear();
    m_before.reset();
    m_isLastQuestion = false;
    askIdentity();
}

/// Only now: a question whose connection breaks is sent again, and another box may answer that.
void ParameterPanel::askParameters()
{
    for (const QString& name : qAsConst(m_read))
        m_asked[m_hub.http.get(requestType, BoxProtocol::readUrl(m_ip, name), false)] = name;
}

void ParameterPanel::askIdentity()
{
    m_question =
        m_hub.http.getFirst(identityType, BoxProtocol::readUrl(m_ip, BoxProtocol::MACAddress));
}

void ParameterPanel::handleIdentity(const HttpResult& result)
{
    if (result.id != m_question || result.deviceIp != m_hub.state.deviceIp())
        return;
    m_question.clear();
    const std::optional<QString> who = identityIn(result);
    const QString mac = who.value_or(QString());
    const bool other = isAnother(mac);
    if (!mac.isEmpty())
        noteMac(m_ip, mac);
    // Read anew by now.
    if (other)
        return;
    if (!m_isLastQuestion) {
        m_before = who;
        askParameters();
    } else if (who && who == m_before && (!mac.isEmpty() || m_mac.isEmpty())) {
        showHeld();
    } else {
        readAgain();
    }
}

/// What was held may have come from several boxes that claim the address, unless the same one has
/// answered before and after it.
void ParameterPanel::proveIfComplete()
{
    if (!m_asked.isEmpty() || m_held.isEmpty())
        return;
    if (!m_before) {
        readAgain();
        return;
    }
    m_isLastQuestion = true;
    askIdentity();
}

void ParameterPanel::showHeld()
{
    // Whoever answers is the box, where that has no MAC address.
    m_sameBox |= m_mac.isEmpty();
    for (auto it = m_held.cbegin(); it != m_held.cend(); ++it) {
        ShownParameter* parameter = find(it.key());
        if (it->isValid())
            rememberValue(m_ip, it.key(), *it);
        if (parameter && it->isValid())
            parameter->tell(*it);
        else if (parameter)
            parameter->refuse();
    }
    m_held.clear();
    showStates();
}

void ParameterPanel::readAgain()
{
    if (m_readings < mostReadings) {
        m_again.start();
        return;
    }
    for (const QString& name : m_held.keys()) {
        if (ShownParameter* parameter = find(name))
            parameter->fail();
    }
    m_held.clear();
    showStates();
}

/// Values of a box that had no MAC address to tell may be those of one that has.
bool ParameterPanel::isAnother(const QString& mac) const
{
    return m_mac.isEmpty() ? m_sameBox && !mac.isEmpty() : isOther(mac, m_mac);
}

void ParameterPanel::noteMac(const QString& ip, const QString& mac)
{
    if (ip != m_ip || ip != m_hub.state.deviceIp())
        return;
    if (isAnother(mac)) {
        m_ip.clear();
        // What else is shown of the selected box is not this one's either.
        emit m_hub.state.readingWanted();
    }
    // What was typed for a box that had not told who it is may have been for another one.
    m_sameBox = m_wasNamed;
    m_mac = mac;
}

void ParameterPanel::rememberValue(const QString& ip, const QString& name,
                                   const QVariant& value) const
{
    if (Item* device = m_hub.devices.model().find(ip))
        device->setParameter(name, value);
}

void ParameterPanel::handleReply(const HttpResult& result)
{
    const QString asked = m_asked.take(result.id);
    // The name becomes the name of a property: only names of ours may.
    const bool known = m_read.contains(result.parameterName);
    const ShownParameter* answered = known ? find(result.parameterName) : nullptr;
    const bool isValue =
        known && !result.isRefusal() &&
        (answered ? fits(answered->row().binding, result.value) : isScalar(result.value));
    // What was asked before the box was selected comes too late for the panels.
    if (result.deviceIp != m_hub.state.deviceIp()) {
        if (isValue)
            rememberValue(result.deviceIp, result.parameterName, result.value);
        return;
    }
    if (asked.isEmpty())
        return;
    const bool other = known && result.parameterName != asked;
    if ((isValue || result.isRefusal()) && !other) {
        m_held.insert(asked, isValue ? result.value : QVariant());
    } else if (ShownParameter* parameter = find(asked)) {
        parameter->fail();
        showStates();
    }
    proveIfComplete();
}

QMap<QString, QString> ParameterPanel::valuesToSave(const QString& ip) const
{
    QMap<QString, QString> values;
    bool any = false;
    for (const ShownParameter& parameter : m_parameters) {
        const auto value = parameter.toSave(m_sameBox);
        if (value)
            values.insert(parameter.row().name, *value);
        any |= value && parameter.row().isRead();
    }
    return any && ip == m_ip ? values : QMap<QString, QString>();
}

int ParameterPanel::unreadCount(const QString& ip) const
{
    int count = 0;
    const QMap<QString, QString> sent = valuesToSave(ip);
    for (const ShownParameter& parameter : m_parameters) {
        const ParameterRow& row = parameter.row();
        const bool unread = parameter.isUnread() || parameter.state() == FieldState::Changed;
        count += row.binding.read && unread && !sent.contains(row.name) ? 1 : 0;
    }
    return count;
}

void ParameterPanel::noteSaved(const QString& ip, const QMap<QString, QString>& values)
{
    if (ip != m_ip)
        return;
    bool isDoubtful = false;
    for (ShownParameter& parameter : m_parameters) {
        const auto value = values.constFind(parameter.row().name);
        if (value == values.constEnd())
            continue;
        isDoubtful |= parameter.noteSaved(*value) && isTakenApart(*value);
    }
    showStates();
    // What it has made of it, it has to tell.
    if (isDoubtful)
        emit m_hub.state.readingWanted();
}

ShownParameter* ParameterPanel::find(const QString& parameter)
{
    for (ShownParameter& shown : m_parameters) {
        if (shown.row().name == parameter)
            return &shown;
    }
    return nullptr;
}
