// SPDX-License-Identifier: MIT
#include "ui/control/live_control.h"

#include "common/box_protocol.h"
#include "common/command_runner.h"
#include "device/device_registry.h"
#include "device/tree_model.h"
#include "ui/control/setui.h"
#include "ui/hub/command_replies.h"
#include "ui/hub/hub_state.h"
#include "widgets/message_box.h"

namespace
{

bool isSuccess(const QVariantMap& reply)
{
    return reply.value(QStringLiteral("status")).toString() == QLatin1String("success");
}

} // namespace

LiveControl::LiveControl(const Hub& hub) : QObject(nullptr), m_hub(hub) {}

void LiveControl::registerReplies(CommandReplies& replies)
{
    replies.on(QStringLiteral("stream_on"),
               [this](const QProcess&, const QVariantMap& reply) { handleStarted(reply); });
    replies.on(QStringLiteral("stream_off"), [this](const QProcess&, const QVariantMap& reply) {
        if (isSuccess(reply))
            messageBox::ask(tr("关闭直播服务成功"), m_hub.window);
    });
}

void LiveControl::handleStarted(const QVariantMap& reply)
{
    const QString text = isSuccess(reply) ? tr("开启直播服务成功") +
                                                reply.value(QStringLiteral("pull_url")).toString()
                                          : tr("开启直播服务失败");
    messageBox::ask(text, m_hub.window);
}

void LiveControl::ask()
{
    const QString ip = m_hub.state.deviceIp();
    if (!m_hub.devices.model().find(ip)) {
        messageBox::ask(tr("请您在设备列表中选择要操作的设备!"), m_hub.window);
        return;
    }
    auto* dialog = new setui(setui::Page::Live, ip, m_hub.http, m_hub.window);
    const int result = dialog->exec();
    const QString address = BoxProtocol::escapeEquals(dialog->address());
    const QString port = dialog->port();
    dialog->deleteLater();
    if (result == setui::StopLive)
        m_hub.runner.execCurl(ip, BoxProtocol::controlCommand(QStringLiteral("stream_off"), ip),
                              {});
    else if (result == setui::StartLive)
        m_hub.runner.execCurl(ip,
                              port.isEmpty() ? BoxProtocol::streamPushCommand(ip, address)
                                             : BoxProtocol::streamListenCommand(ip, port, address),
                              {});
}
