// SPDX-License-Identifier: MIT
#include "ui/configuration/parameter_panel.h"

#include "common/box_protocol.h"
#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"

namespace
{

const QString requestType = QStringLiteral("getConfigDeviceinfo");

/// Text or a number; a list, an object or nothing at all is no value of a parameter.
bool isScalar(const QVariant& value)
{
    return value.type() == QVariant::String || value.type() == QVariant::Double ||
           value.type() == QVariant::LongLong;
}

} // namespace

ParameterPanel::ParameterPanel(const Hub& hub, const ParameterTable& table)
    : QObject(nullptr), m_hub(hub), m_table(table), m_read(BoxProtocol::configurationParameters())
{
    for (const ParameterRow& row : m_table) {
        const bool shown = row.binding.show || row.binding.showList;
        if (shown && !m_read.contains(row.name))
            m_read << row.name;
    }
    hub.exchange.onResult(requestType, [this](const HttpResult& result) { handleReply(result); });
    connect(&hub.state, &HubState::readingWanted, this, &ParameterPanel::getConfigDeviceinfo);
}

void ParameterPanel::getConfigDeviceinfo()
{
    const QString address = m_hub.state.deviceIp();
    for (const QString& parameter : m_read)
        m_hub.http.get(requestType, BoxProtocol::readUrl(address, parameter), false);
}

void ParameterPanel::handleReply(const HttpResult& result)
{
    // The name becomes the name of a property: only names of ours may.
    if (!m_read.contains(result.parameterName))
        return;
    const ParameterRow* row = find(result.parameterName);
    const bool list = row && row->binding.showList;
    if (list ? result.value.type() != QVariant::List : !isScalar(result.value))
        return;
    if (Item* device = m_hub.devices.model().find(result.deviceIp))
        device->setParameter(result.parameterName, result.value);
    // The answer of a box that was selected before comes too late for the panels.
    if (!row || result.deviceIp != m_hub.state.deviceIp())
        return;
    if (list)
        row->binding.showList(result.value);
    else if (row->binding.show)
        row->binding.show(result.value.toString());
}

QMap<QString, QString> ParameterPanel::valuesToSave() const
{
    QMap<QString, QString> values;
    for (const ParameterRow& row : m_table) {
        const auto value = row.binding.read ? row.binding.read() : std::nullopt;
        if (value)
            values.insert(row.name, *value);
    }
    return values;
}

const ParameterRow* ParameterPanel::find(const QString& parameter) const
{
    for (const ParameterRow& row : m_table) {
        if (row.name == parameter)
            return &row;
    }
    return nullptr;
}
