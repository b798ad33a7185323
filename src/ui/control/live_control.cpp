// SPDX-License-Identifier: MIT
#include "ui/control/live_control.h"

#include "common/box_protocol.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/control/setui.h"
#include "ui/hub/exchange.h"
#include "ui/hub/orders.h"
#include "widgets/message_box.h"

LiveControl::LiveControl(const Hub& hub) : QObject(nullptr), m_hub(hub)
{
    hub.exchange.onReply(BoxProtocol::StreamOn,
                         [this](const QProcess&, const BoxReply& reply) { handleStarted(reply); });
    hub.exchange.onReply(BoxProtocol::StreamOff, [this](const QProcess&, const BoxReply& reply) {
        messageBox::tell(reply.isSuccess() ? tr("关闭直播服务成功") : tr("关闭直播服务失败"),
                         m_hub.window);
    });
    // The answer may be lost and the deed done.
    hub.exchange.onSilence(BoxProtocol::StreamOn, [this](const QProcess&) {
        messageBox::tell(tr("设备没有回应，直播服务可能没有开启。"), m_hub.window);
    });
    hub.exchange.onSilence(BoxProtocol::StreamOff, [this](const QProcess&) {
        messageBox::tell(tr("设备没有回应，直播服务可能没有关闭。"), m_hub.window);
    });
}

void LiveControl::handleStarted(const BoxReply& reply)
{
    const QString address = reply.field("pull_url");
    QString text = tr("开启直播服务失败");
    if (reply.isSuccess())
        text = address.isEmpty() ? tr("开启直播服务成功")
                                 : BoxProtocol::fill(tr("开启直播服务成功%1"), {address});
    messageBox::tell(text, m_hub.window);
}

void LiveControl::ask()
{
    const Item* device = m_hub.freeDevice();
    if (!device)
        return;
    const BoxId box = BoxId::of(*device);
    const QString ip = box.ip;
    auto* dialog = new setui(setui::Page::Live, *device, m_hub.http, m_hub.window);
    const int result = dialog->exec();
    const QString address = BoxProtocol::escapeEquals(dialog->address());
    const QString port = dialog->port();
    dialog->deleteLater();
    if (result != setui::StopLive && result != setui::StartLive)
        return;
    // An upgrade may have taken it while the dialog was open.
    device = m_hub.devices.model().find(ip);
    if (device && !m_hub.isFree(*device))
        return;
    const bool stops = result == setui::StopLive;
    QString command = BoxProtocol::controlCommand(BoxProtocol::StreamOff, ip);
    if (!stops)
        command = port.isEmpty() ? BoxProtocol::streamPushCommand(ip, address)
                                 : BoxProtocol::streamListenCommand(ip, port, address);
    m_hub.orders.send(box, command, {}, this, [this, ip, stops](bool isSent) {
        const QString failure = stops ? tr("关闭直播服务失败") : tr("开启直播服务失败");
        if (!isSent)
            messageBox::tell(m_hub.orders.explained(ip, failure), m_hub.window);
    });
}
