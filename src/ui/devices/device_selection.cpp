// SPDX-License-Identifier: MIT
#include "ui/devices/device_selection.h"

#include "common/box_protocol.h"
#include "common/command_runner.h"
#include "device/item.h"
#include "media/event_sockets.h"
#include "ui/configuration/parameter_panel.h"
#include "ui/devices/device_info.h"
#include "ui/hub/hub_state.h"
#include "ui/window/window_frame.h"
#include "widgets/message_box.h"

DeviceSelection::DeviceSelection(const Hub& hub, WindowFrame& frame, DeviceInfo& info,
                                 ParameterPanel& panel, EventSockets& events)
    : QObject(hub.window)
    , m_hub(hub)
    , m_frame(frame)
    , m_info(info)
    , m_panel(panel)
    , m_events(events)
{
}

void DeviceSelection::select(Item* item)
{
    if (!item) {
        m_frame.showNothingSelected();
        return;
    }
    if (item->isGroup())
        return;
    if (item->isKora()) {
        showKora(*item);
        return;
    }
    m_hub.state.setDeviceIp(item->address());
    m_frame.showWebPage(BoxProtocol::dashboardUrl(item->address()));
}

void DeviceSelection::showKora(const Item& box)
{
    m_frame.setCaptions(box.combinedLabel());
    m_hub.state.setDeviceIp(box.address());
    emit koraSelected(box);
    readSelected();
    m_events.connectTo(box.address());
    m_frame.showKora(box.isUpgrading());
}

void DeviceSelection::readSelected()
{
    m_info.getDeviceinfo(QString());
    m_panel.getConfigDeviceinfo(QString(), QString());
    m_panel.getDeviceRecordList();
}

void DeviceSelection::restart(Item* item)
{
    if (!item)
        return;
    // Taken now: the box may leave the list while the question is open.
    const QString ip = item->address();
    const int answer = messageBox::ask(tr("确认要重启KORA设备吗? ") + ip, m_hub.window);
    if (answer == messageBox::Confirmed)
        m_hub.runner.execCurl(ip, BoxProtocol::rebootCommand(ip), {});
}

void DeviceSelection::handleCameOnline(const QString& ip)
{
    if (ip != m_hub.state.deviceIp())
        return;
    if (m_frame.isWebPageShown())
        m_frame.showWebPage(BoxProtocol::dashboardUrl(ip));
    else
        readSelected();
}
