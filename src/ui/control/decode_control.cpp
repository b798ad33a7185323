// SPDX-License-Identifier: MIT
#include "ui/control/decode_control.h"

#include "common/box_protocol.h"
#include "device/device_registry.h"
#include "device/tree_model.h"
#include "ui/control/encoder_control.h"
#include "ui/control/setui.h"
#include "ui/hub/busy.h"
#include "ui/hub/command_replies.h"
#include "ui/hub/command_sequence.h"
#include "ui/hub/hub_state.h"
#include "widgets/message_box.h"

namespace
{

namespace Box = BoxProtocol;

enum HdmiMode { Encode = 1, Decode = 2 };

QStringList startCommands(const QString& ip, bool encoding, const QString& source)
{
    QStringList commands;
    if (encoding)
        commands << Box::controlCommand(QStringLiteral("hxenc_off"), ip);
    commands << Box::setCommand(Box::HDMIMode, QString::number(Decode), ip);
    if (encoding)
        commands << Box::controlCommand(QStringLiteral("hxenc_on"), ip);
    return commands << Box::decodeOnCommand(ip, source);
}

QStringList stopCommands(const QString& ip, bool encoding)
{
    QStringList commands{Box::setCommand(Box::HDMIMode, QString::number(Encode), ip),
                         Box::controlCommand(QStringLiteral("hxdec_off"), ip)};
    if (encoding)
        commands << Box::controlCommand(QStringLiteral("hxenc_on"), ip);
    return commands;
}

} // namespace

DecodeControl::DecodeControl(const Hub& hub, const EncoderControl& encoder, Busy& busy)
    : QObject(nullptr), m_hub(hub), m_encoder(encoder), m_busy(busy)
{
}

void DecodeControl::registerReplies(CommandReplies& replies)
{
    const auto onSuccess = [this, &replies](const QString& action, const QString& text) {
        replies.on(action, [this, text](const QProcess&, const QVariantMap& reply) {
            if (reply.value(QStringLiteral("status")).toString() == QLatin1String("success"))
                messageBox::ask(text, m_hub.window);
        });
    };
    onSuccess(QStringLiteral("hxdec_on"), tr("开启解码成功"));
    onSuccess(QStringLiteral("hxdec_off"), tr("关闭解码成功"));
}

void DecodeControl::ask()
{
    const QString ip = m_hub.state.deviceIp();
    if (!m_hub.devices.model().find(ip)) {
        messageBox::ask(tr("请您在设备列表中选择要操作的设备!"), m_hub.window);
        return;
    }
    auto* dialog = new setui(setui::Page::Decode, ip, m_hub.http, m_hub.window);
    const bool encoding = m_encoder.isEncoding();
    const int result = dialog->exec();
    const QString source = dialog->source();
    dialog->deleteLater();
    if (result == setui::StartDecoding)
        run(ip, startCommands(ip, encoding, source), tr("开启"), source);
    else if (result == setui::StopDecoding)
        run(ip, stopCommands(ip, encoding), tr("关闭"), source);
}

void DecodeControl::run(const QString& ip, const QStringList& commands, const QString& operation,
                        const QString& source)
{
    Busy::Run run(m_busy);
    if (!run)
        return;
    const SequenceResult result = runCommands(m_hub, ip, commands);
    run.end();
    if (result == SequenceResult::WindowClosed)
        return;
    // Joined, not filled in: a source's name may hold "%1".
    const QString text = result == SequenceResult::AllSucceeded
                             ? tr("解码成功") + source
                             : BoxProtocol::fill(tr("解码失败%1,请重试!"), {source});
    messageBox::ask(operation + text, m_hub.window);
}
