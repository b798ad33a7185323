// SPDX-License-Identifier: MIT
#include "ui/control/decode_control.h"

#include "common/box_protocol.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/control/encoder_control.h"
#include "ui/control/setui.h"
#include "ui/hub/busy.h"
#include "ui/hub/exchange.h"
#include "ui/hub/orders.h"
#include "widgets/message_box.h"

namespace
{

namespace Box = BoxProtocol;

enum HdmiMode { Encode = 1, Decode = 2 };

QStringList startCommands(const QString& ip, bool encoding, const QString& source)
{
    QStringList commands;
    if (encoding)
        commands << Box::controlCommand(Box::HxEncoderOff, ip);
    commands << Box::setCommand(Box::HDMIMode, QString::number(Decode), ip);
    if (encoding)
        commands << Box::controlCommand(Box::HxEncoderOn, ip);
    return commands << Box::decodeOnCommand(ip, source);
}

QStringList stopCommands(const QString& ip, bool encoding)
{
    QStringList commands{Box::setCommand(Box::HDMIMode, QString::number(Encode), ip),
                         Box::controlCommand(Box::DecodeOff, ip)};
    if (encoding)
        commands << Box::controlCommand(Box::HxEncoderOn, ip);
    return commands;
}

} // namespace

DecodeControl::DecodeControl(const Hub& hub, const EncoderControl& encoder, Busy& busy)
    : QObject(nullptr), m_hub(hub), m_encoder(encoder), m_busy(busy)
{
    tellSuccess(Box::DecodeOn, QT_TR_NOOP("开启解码成功"));
    tellSuccess(Box::DecodeOff, QT_TR_NOOP("关闭解码成功"));
}

void DecodeControl::tellSuccess(const QString& command, const char* text)
{
    m_hub.exchange.onReply(command, [this, text](const QProcess&, const BoxReply& reply) {
        if (reply.isSuccess())
            messageBox::tell(tr(text), m_hub.window);
    });
}

void DecodeControl::ask()
{
    const Item* device = m_hub.freeDevice();
    if (!device)
        return;
    // Whether the encoder has to make room depends on it.
    if (!m_encoder.isModeKnown()) {
        messageBox::tell(tr("尚未读到设备的编码状态，请稍后重试。"), m_hub.window);
        return;
    }
    const BoxId box = BoxId::of(*device);
    auto* dialog = new setui(setui::Page::Decode, *device, m_hub.http, m_hub.window);
    const bool encoding = m_encoder.isEncoding();
    const int result = dialog->exec();
    const QString source = dialog->source();
    dialog->deleteLater();
    if (result == setui::StartDecoding)
        start(box, encoding, source);
    else if (result == setui::StopDecoding)
        stop(box, encoding);
}

void DecodeControl::start(const BoxId& box, bool encoding, const QString& source)
{
    const SequenceResult result = run(box, startCommands(box.ip, encoding, source));
    tell(box, result, Box::fill(tr("开启解码成功%1"), {source}),
         Box::fill(tr("开启解码失败%1,请重试!"), {source}));
}

void DecodeControl::stop(const BoxId& box, bool encoding)
{
    const SequenceResult result = run(box, stopCommands(box.ip, encoding));
    tell(box, result, tr("关闭解码成功"), tr("关闭解码失败,请重试!"));
}

/// As if the window had closed, when nothing may be sent.
SequenceResult DecodeControl::run(const BoxId& box, const QStringList& commands)
{
    // An upgrade may have taken it while the dialog was open.
    const Item* device = m_hub.devices.model().find(box.ip);
    if (device && !m_hub.isFree(*device))
        return SequenceResult::WindowClosed;
    Busy::Run run(m_busy);
    return run ? m_hub.orders.run(box, commands) : SequenceResult::WindowClosed;
}

void DecodeControl::tell(const BoxId& box, SequenceResult result, const QString& success,
                         const QString& failure)
{
    if (result == SequenceResult::AllSucceeded)
        messageBox::tell(success, m_hub.window);
    else if (result == SequenceResult::SomeFailed)
        messageBox::tell(m_hub.orders.explained(box.ip, failure), m_hub.window);
}
