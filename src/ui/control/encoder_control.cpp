// SPDX-License-Identifier: MIT
#include "ui/control/encoder_control.h"

#include "common/box_protocol.h"
#include "device/item.h"
#include "ui/control/control_area.h"
#include "ui/hub/busy.h"
#include "ui/hub/field_state.h"
#include "ui/hub/hub_state.h"
#include "widgets/message_box.h"

namespace
{

// Compressed formats, one for each codec: HX2 has 1 and 2, HX3 has 3 and 4.
constexpr int hx2Format = 1;
constexpr int hx3Format = 3;
enum Codec { H264 = 0, H265 = 1 };

} // namespace

/// A list of commands to one box, in the order of sending.
class EncoderControl::Commands
{
public:
    explicit Commands(const Item& box) : m_box(BoxId::of(box)) {}

    Commands& control(QLatin1String action)
    {
        m_commands << BoxProtocol::controlCommand(action, m_box.ip);
        return *this;
    }
    Commands& controlIf(bool wanted, QLatin1String action)
    {
        return wanted ? control(action) : *this;
    }
    Commands& set(QLatin1String parameter, int value)
    {
        m_commands << BoxProtocol::setCommand(parameter, QString::number(value), m_box.ip);
        m_format = parameter == BoxProtocol::NDIHXFormat ? QString::number(value) : m_format;
        return *this;
    }
    Commands& startHx(int format)
    {
        return set(BoxProtocol::NDIHXFormat, format)
            .set(BoxProtocol::HDMIMode, 1)
            .set(BoxProtocol::NDIEncMode, 0)
            .control(BoxProtocol::HxEncoderOn);
    }

    const BoxId& box() const { return m_box; }
    const QStringList& commands() const { return m_commands; }
    /// The format that the box has afterwards; empty when the list leaves it as it is.
    const QString& format() const { return m_format; }

private:
    const BoxId m_box;
    QStringList m_commands;
    QString m_format;
};

EncoderControl::EncoderControl(const Hub& hub, Ui::ControlArea& area, Busy& busy)
    : QObject(nullptr), m_hub(hub), m_area(area), m_busy(busy)
{
}

bool EncoderControl::isEncoding() const
{
    return m_area.HB->isChecked() || m_area.HX2->isChecked() || m_area.HX3->isChecked();
}

bool EncoderControl::isModeKnown() const
{
    return FieldMark::of(m_area.HB) != FieldState::Unknown;
}

/// The selected box; null, after a message, when it may not be told anything: `clicked` goes back
/// to what it showed.
const Item* EncoderControl::boxToCommand(QAbstractButton* clicked) const
{
    const Item* device = m_hub.findSelectedDevice();
    if (device && !device->isOwned())
        return device;
    if (!clicked->autoExclusive())
        clicked->toggle();
    else if (m_hub.state.encoderFormat().toInt() % 2 != 0)
        m_area.H264->setChecked(true);
    else
        m_area.H265->setChecked(true);
    m_hub.freeDevice();
    return nullptr;
}

void EncoderControl::setHb(bool on)
{
    const Item* box = boxToCommand(m_area.HB);
    if (!box)
        return;
    Commands list(*box);
    if (on) {
        list.controlIf(m_area.HX2->isChecked() || m_area.HX3->isChecked(),
                       BoxProtocol::HxEncoderOff);
        m_area.HX2->setChecked(false);
        m_area.HX3->setChecked(false);
        list.set(BoxProtocol::HDMIMode, 1)
            .set(BoxProtocol::NDIEncMode, 1)
            .control(BoxProtocol::FullEncoderOn);
    } else {
        list.control(BoxProtocol::FullEncoderOff);
    }
    switchMode(m_area.HB, list, tr("控制 HB 失败,请重试!"));
}

void EncoderControl::setHx2(bool on)
{
    setHx(m_area.HX2, m_area.HX3, hx2Format, on, tr("控制 HX2 失败,请重试!"));
}

void EncoderControl::setHx3(bool on)
{
    setHx(m_area.HX3, m_area.HX2, hx3Format, on, tr("控制 HX3 失败,请重试!"));
}

void EncoderControl::setHx(QCheckBox* button, QCheckBox* other, int h264Format, bool on,
                           const QString& failure)
{
    const Item* box = boxToCommand(button);
    if (!box)
        return;
    Commands list(*box);
    if (on) {
        list.controlIf(m_area.HB->isChecked(), BoxProtocol::FullEncoderOff);
        list.controlIf(other->isChecked(), BoxProtocol::HxEncoderOff);
        m_area.HB->setChecked(false);
        other->setChecked(false);
        list.startHx(h264Format + (m_area.H264->isChecked() ? H264 : H265));
    } else {
        list.control(BoxProtocol::HxEncoderOff);
    }
    switchMode(button, list, failure);
}

/// Sends the list; afterwards the format that it has set is the one that the box has.
SequenceResult EncoderControl::run(const Commands& list)
{
    Busy::Run run(m_busy);
    if (!run)
        return SequenceResult::WindowClosed;
    const SequenceResult result = m_hub.orders.run(list.box(), list.commands());
    if (result == SequenceResult::AllSucceeded && !list.format().isEmpty() &&
        m_hub.state.deviceIp() == list.box().ip)
        m_hub.state.setEncoderFormat(list.format());
    return result;
}

void EncoderControl::switchMode(QCheckBox* button, const Commands& list, const QString& failure)
{
    if (run(list) != SequenceResult::SomeFailed)
        return;
    // The button may stand for another box by now, one that has told nothing yet.
    if (m_hub.state.deviceIp() == list.box().ip && isModeKnown())
        button->toggle();
    messageBox::tell(m_hub.orders.explained(list.box().ip, failure), m_hub.window);
}

void EncoderControl::setH264(bool on)
{
    if (on)
        setCodec(H264);
}

void EncoderControl::setH265(bool on)
{
    if (on)
        setCodec(H265);
}

void EncoderControl::setCodec(int codec)
{
    const Item* box = boxToCommand(codec == H264 ? m_area.H264 : m_area.H265);
    if (!box)
        return;
    Commands list(*box);
    if (m_area.HX2->isChecked() || m_area.HX3->isChecked()) {
        const int format = m_area.HX2->isChecked() ? hx2Format : hx3Format;
        list.control(BoxProtocol::HxEncoderOff).startHx(format + codec);
    } else {
        // The encoder does not run compressed: only the stored format changes, to the same mode
        // with the other codec.
        const int stored = m_hub.state.encoderFormat().toInt();
        for (const int h264Format : {hx2Format, hx3Format}) {
            if (stored == h264Format + (codec == H264 ? H265 : H264))
                list.set(BoxProtocol::NDIHXFormat, h264Format + codec);
        }
    }
    // One text for both codecs.
    if (run(list) == SequenceResult::SomeFailed)
        messageBox::tell(m_hub.orders.explained(list.box().ip, tr("控制 H264 失败,请重试!")),
                         m_hub.window);
}
