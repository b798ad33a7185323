// SPDX-License-Identifier: MIT
#include "ui/configuration/configuration_save.h"

#include "common/box_protocol.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/configuration/configuration_area.h"
#include "ui/configuration/parameter_panel.h"
#include "ui/hub/availability.h"
#include "widgets/message_box.h"

namespace
{

QString lastReported(const Item& device, QLatin1String parameter)
{
    return device.parameter(parameter).toString();
}

} // namespace

ConfigurationSave::ConfigurationSave(const Hub& hub, Ui::ConfigurationArea& area,
                                     ParameterPanel& panel)
    : QObject(nullptr)
    , m_hub(hub)
    , m_panel(panel)
    , m_button(*area.save)
    , m_busy(area.busy_config, {area.config_body, area.save})
{
}

void ConfigurationSave::setHindrance(const QString& why)
{
    Availability::set(m_button, "unread", why);
}

void ConfigurationSave::save()
{
    const Item* device = m_hub.freeDevice();
    if (!device)
        return;
    // All taken before the first wait: another box may be selected, or this one gone, meanwhile.
    const QString ip = device->address();
    // The values are those of the box that the panel was read from, whatever the row says by now.
    const BoxId box{ip, m_panel.mac()};
    const Network before{lastReported(*device, BoxProtocol::DHCP),
                         lastReported(*device, BoxProtocol::IPAddress),
                         lastReported(*device, BoxProtocol::NetMask)};
    const QMap<QString, QString> values = m_panel.valuesToSave(ip);
    const int unread = m_panel.unreadCount(ip);
    const QString problem = objection(values, before);
    if (!problem.isEmpty()) {
        messageBox::tell(problem, m_hub.window);
        return;
    }
    Busy::Run run(m_busy);
    if (!run)
        return;
    QString message;
    const SequenceResult result = send(box, values, before, message);
    run.end();
    if (result == SequenceResult::WindowClosed)
        return;
    if (unread > 0)
        message += QLatin1Char('\n') + tr("%n 项参数未从设备读到，没有保存。", nullptr, unread);
    messageBox::tell(message, m_hub.window);
}

/// Blocks, serving events; `message` is what is to be said of it.
SequenceResult ConfigurationSave::send(const BoxId& box, const QMap<QString, QString>& values,
                                       const Network& before, QString& message)
{
    // An upgrade that begins meanwhile waits for all of it, the restart included, but not for the
    // message about it.
    const OrderHold hold(m_hub.devices.model().find(box.ip));
    QStringList commands;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        commands << BoxProtocol::setCommand(it.key(), it.value(), box.ip);
    const SequenceResult result = m_hub.orders.run(box, commands, true);
    message = m_hub.orders.explained(box.ip, tr("设置参数部分失败,请检查KORA网络状态后重试."));
    if (result != SequenceResult::AllSucceeded)
        return result;
    m_panel.noteSaved(box.ip, values);
    return apply(box, values, before, message);
}

/// Why these values must not be sent; empty when they may.
QString ConfigurationSave::objection(const QMap<QString, QString>& values,
                                     const Network& before) const
{
    if (values.isEmpty())
        return tr("尚未读到设备的参数，没有可保存的内容。");
    const auto isEmpty = [&values](QLatin1String name) {
        return values.contains(name) && values.value(name).isEmpty();
    };
    // An incomplete static address would leave the box where nobody finds it, and so would one that
    // nobody knows.
    if (isEmpty(BoxProtocol::IPAddress) || isEmpty(BoxProtocol::NetMask))
        return tr("请输入正确的IP地址和子网掩码");
    const bool endsDhcp =
        values.value(BoxProtocol::DHCP) == QLatin1String("0") && before.dhcp != QLatin1String("0");
    if (endsDhcp &&
        !(values.contains(BoxProtocol::IPAddress) && values.contains(BoxProtocol::NetMask)))
        return tr("未读到设备的静态IP地址和子网掩码，不能关闭DHCP。");
    return QString();
}

/// Makes the box use what it was sent, and says so in `message`. Blocks, serving events.
SequenceResult ConfigurationSave::apply(const BoxId& box, const QMap<QString, QString>& sent,
                                        const Network& before, QString& message)
{
    message = tr("设置参数成功.");
    // An upgrade has taken it meanwhile, and restarts it in its own time.
    const Item* row = m_hub.devices.model().find(box.ip);
    if (row && row->isTaken())
        return SequenceResult::AllSucceeded;
    // What was not sent cannot differ.
    const auto differs = [&sent](QLatin1String name, const QString& was) {
        return sent.value(name, was) != was;
    };
    QString command;
    QString applied;
    if (differs(BoxProtocol::DHCP, before.dhcp)) {
        command = BoxProtocol::rebootCommand(box.ip);
        applied = tr("设置成功,正在重启KORA软件.");
    } else if (sent.value(BoxProtocol::DHCP) == QLatin1String("0") &&
               (differs(BoxProtocol::IPAddress, before.ip) ||
                differs(BoxProtocol::NetMask, before.mask))) {
        command = BoxProtocol::restartCommand(box.ip);
        applied = tr("设置成功,正在重启KORA设备.");
    }
    if (command.isEmpty())
        return SequenceResult::AllSucceeded;
    // Part of saving: a window that closes before the box has heard it would leave the box with
    // settings that it does not use.
    const SequenceResult result = m_hub.orders.run(box, {command});
    message = result == SequenceResult::AllSucceeded
                  ? applied
                  : m_hub.orders.explained(
                        box.ip, tr("设置已写入，但不能确定KORA已重启，重启后才会生效。"));
    return result;
}
