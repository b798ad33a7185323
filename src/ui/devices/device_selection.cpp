// SPDX-License-Identifier: MIT
#include "ui/devices/device_selection.h"

#include "common/box_protocol.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"
#include "ui/hub/orders.h"
#include "widgets/message_box.h"

#include <QProcess>

DeviceSelection::DeviceSelection(const Hub& hub) : QObject(hub.window), m_hub(hub)
{
    hub.exchange.onAction(Action::Select, [this](Item* item) { select(item); });
    hub.exchange.onAction(Action::RestartDevice, [this](Item* item) { restart(item); });
    hub.exchange.onReply(BoxProtocol::Reboot,
                         [this](const QProcess& process, const BoxReply& reply) {
                             // One that goes at once says nothing at all.
                             if (!reply.isSuccess())
                                 tellNotRestarted(process.property("ip").toString());
                         });
    connect(&hub.devices, &DeviceRegistry::cameOnline, this, &DeviceSelection::handleCameOnline);
}

void DeviceSelection::select(Item* item)
{
    if (!item) {
        m_pageShown = false;
        m_hub.state.setDeviceIp(QString());
        emit nothingSelected();
        return;
    }
    if (item->isGroup())
        return;
    m_hub.state.setDeviceIp(item->address());
    m_pageShown = !item->isKora();
    if (m_pageShown) {
        emit webBoxSelected(BoxProtocol::dashboardUrl(item->address()));
        return;
    }
    emit m_hub.state.koraSelected(*item);
    emit m_hub.state.readingWanted();
}

void DeviceSelection::restart(Item* item)
{
    if (!item || !m_hub.isFree(*item))
        return;
    // Taken now: the box may leave the list while the question is open.
    const BoxId target = BoxId::of(*item);
    const QString ip = target.ip;
    const int answer = messageBox::ask(tr("确认要重启KORA设备吗? ") + ip, m_hub.window);
    if (answer != messageBox::Confirmed)
        return;
    // An upgrade may have begun while the question was open, or the box have left the list.
    const Item* box = m_hub.devices.model().find(ip);
    if (!box || !m_hub.isFree(*box))
        return;
    m_hub.orders.send(target, BoxProtocol::rebootCommand(ip), {}, this, [this, ip](bool isSent) {
        if (!isSent)
            tellNotRestarted(ip);
    });
}

void DeviceSelection::tellNotRestarted(const QString& ip)
{
    const QString text = tr("KORA %1 未重启，请检查KORA网络状态后重试。").arg(ip);
    messageBox::tell(m_hub.orders.explained(ip, text), m_hub.window);
}

void DeviceSelection::handleCameOnline(const QString& ip)
{
    if (ip != m_hub.state.deviceIp())
        return;
    if (m_pageShown)
        emit webBoxSelected(BoxProtocol::dashboardUrl(ip));
    else
        emit m_hub.state.readingWanted();
}
