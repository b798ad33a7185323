// SPDX-License-Identifier: MIT
#include "ui/configuration/configuration_save.h"

#include "common/box_protocol.h"
#include "common/command_runner.h"
#include "common/http_result.h"
#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
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
                                     ParameterPanel& panel)
    : QObject(nullptr)
    , m_hub(hub)
    , m_panel(panel)
    , m_busy(area.busy_config, {area.config_body, area.save})
{
}

void ConfigurationSave::save()
{
    const Item* device = m_hub.freeDevice();
    if (!device)
        return;
    // All taken before the first wait: another box may be selected, or this one gone, meanwhile.
    const QString ip = device->address();
    const QString mac = device->macAddress();
    const Network before{lastReported(*device, BoxProtocol::DHCP),
                         lastReported(*device, BoxProtocol::IPAddress),
                         lastReported(*device, BoxProtocol::NetMask)};
    const QMap<QString, QString> values = m_panel.valuesToSave(ip);
    const int unread = m_panel.unreadCount(ip);
    const QString problem = objection(values, before);
    if (!problem.isEmpty()) {
        messageBox::ask(problem, m_hub.window);
        return;
    }
    Busy::Run run(m_busy);
    if (!run)
        return;
    QStringList commands;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        commands << BoxProtocol::setCommand(it.key(), it.value(), ip);
    const SequenceResult result =
        runCommands(m_hub, ip, commands, true, [this, ip, mac] { return isAt(ip, mac); });
    run.end();
    if (result == SequenceResult::WindowClosed)
        return;
    QString message = tr("设置参数部分失败,请检查KORA网络状态后重试.");
    if (result == SequenceResult::AllSucceeded) {
        m_panel.noteSaved(ip, values);
        message = apply(ip, values, before);
    }
    if (unread > 0)
        message += QLatin1Char('\n') + tr("%1 项参数未从设备读到,没有保存.").arg(unread);
    messageBox::ask(message, m_hub.window);
}

/// What one box has told must not be written to another that has its address by now, which nobody
/// may have noticed yet. It blocks and serves events. Of a box without a MAC address nobody can
/// tell.
bool ConfigurationSave::isAt(const QString& ip, const QString& mac) const
{
    if (mac.isEmpty())
        return true;
    const QString answer = m_hub.http.get(QStringLiteral("saveIdentity"),
                                          BoxProtocol::readUrl(ip, BoxProtocol::MACAddress), true);
    return BoxProtocol::isSameMac(HttpResult::fromBody(answer).value.toString(), mac);
}

/// Why these values must not be sent; empty when they may.
QString ConfigurationSave::objection(const QMap<QString, QString>& values,
                                     const Network& before) const
{
    if (values.isEmpty())
        return tr("尚未读到设备的参数,没有可保存的内容.");
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
        return tr("未读到设备的静态IP地址和子网掩码,不能关闭DHCP.");
    return QString();
}

QString ConfigurationSave::apply(const QString& ip, const QMap<QString, QString>& sent,
                                 const Network& before)
{
    // An upgrade has taken it meanwhile, and restarts it in its own time.
    const Item* box = m_hub.devices.model().find(ip);
    if (box && box->isOwned())
        return tr("设置参数成功.");
    // What was not sent cannot differ.
    const auto differs = [&sent](QLatin1String name, const QString& was) {
        return sent.value(name, was) != was;
    };
    if (differs(BoxProtocol::DHCP, before.dhcp)) {
        m_hub.runner.execCurl(ip, BoxProtocol::rebootCommand(ip), {});
        return tr("设置成功,正在重启KORA软件.");
    }
    if (sent.value(BoxProtocol::DHCP) == QLatin1String("0") &&
        (differs(BoxProtocol::IPAddress, before.ip) ||
         differs(BoxProtocol::NetMask, before.mask))) {
        m_hub.runner.execCurl(ip, BoxProtocol::restartCommand(ip), {});
        return tr("设置成功,正在重启KORA设备.");
    }
    return tr("设置参数成功.");
}
