// SPDX-License-Identifier: MIT
#include "ui/configuration/configuration_save.h"

#include "common/box_protocol.h"
#include "common/command_runner.h"
#include "device/item.h"
#include "ui/configuration/configuration_area.h"
#include "ui/configuration/parameter_panel.h"
#include "ui/hub/command_sequence.h"
#include "widgets/message_box.h"

namespace
{

QString lastReported(const Item& device, QLatin1String parameter)
{
    return device.parameter(parameter).toString();
}

} // namespace

ConfigurationSave::ConfigurationSave(const Hub& hub, Ui::ConfigurationArea& area,
                                     const ParameterPanel& panel)
    : QObject(nullptr)
    , m_hub(hub)
    , m_area(area)
    , m_panel(panel)
    , m_busy(area.busy_config, {area.config_body, area.save})
{
}

void ConfigurationSave::save()
{
    const Item* device = m_hub.selectedDevice();
    if (!device)
        return;
    // An incomplete static address would leave the box where nobody finds it.
    if (m_area.eParam_IPAddress->getIP().isEmpty() || m_area.eParam_NetMask->getIP().isEmpty()) {
        messageBox::ask(tr("请输入正确的IP地址和子网掩码"), m_hub.window);
        return;
    }
    Busy::Run run(m_busy);
    if (!run)
        return;
    // All taken before the first wait: another box may be selected, or this one gone, meanwhile.
    const QString ip = device->address();
    const Network before{lastReported(*device, BoxProtocol::DHCP),
                         lastReported(*device, BoxProtocol::IPAddress),
                         lastReported(*device, BoxProtocol::NetMask)};
    const QMap<QString, QString> values = m_panel.valuesToSave();

    QStringList commands;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        commands << BoxProtocol::setCommand(it.key(), it.value(), ip);
    const SequenceResult result = runCommands(m_hub, ip, commands, true);
    run.end();
    if (result == SequenceResult::WindowClosed)
        return;
    const QString message = result == SequenceResult::AllSucceeded
                                ? apply(ip, values, before)
                                : tr("设置参数部分失败,请检查KORA网络状态后重试.");
    messageBox::ask(message, m_hub.window);
}

QString ConfigurationSave::apply(const QString& ip, const QMap<QString, QString>& sent,
                                 const Network& before)
{
    if (sent.value(BoxProtocol::DHCP) != before.dhcp) {
        m_hub.runner.execCurl(ip, BoxProtocol::rebootCommand(ip), {});
        return tr("设置成功,正在重启KORA软件.");
    }
    if (sent.value(BoxProtocol::DHCP) == QLatin1String("0") &&
        (sent.value(BoxProtocol::IPAddress) != before.ip ||
         sent.value(BoxProtocol::NetMask) != before.mask)) {
        m_hub.runner.execCurl(ip, BoxProtocol::restartCommand(ip), {});
        return tr("设置成功,正在重启KORA设备.");
    }
    return tr("设置参数成功.");
}
