// SPDX-License-Identifier: MIT
#include "ui/control/audio_levels.h"

#include "common/box_protocol.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/control/control_area.h"
#include "ui/hub/hub_state.h"
#include "widgets/message_box.h"

namespace
{

constexpr int restMs = 400;

} // namespace

AudioLevels::AudioLevels(const Hub& hub, Ui::ControlArea& area)
    : QObject(nullptr), m_hub(hub), m_area(area)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(restMs);
}

void AudioLevels::sliderMoved(const QSlider* slider, const QString& parameter)
{
    if (!slider->isSliderDown())
        return;
    const Item* box = m_hub.findSelectedDevice();
    m_box = box ? BoxId::of(*box) : BoxId();
    m_value = slider->value();
    m_timer.setProperty("slider_type", parameter);
    m_timer.start();
}

void AudioLevels::send()
{
    // The value must not be lost to a run of other commands, nor overtake the one before; it waits
    // its turn.
    if (m_hub.orders.isRunning()) {
        m_timer.start();
        return;
    }
    const QString parameter = m_timer.property("slider_type").toString();
    QSlider* slider = m_area.eParam_LineinDelaySlider;
    const QLabel* caption = m_area.label_eParam_LineinDelay;
    if (parameter == BoxProtocol::SDIVolume) {
        slider = m_area.eParam_SDIVolumeSlider;
        caption = m_area.label_eParam_SDIVolume;
    } else if (parameter == BoxProtocol::LineinVolume) {
        slider = m_area.eParam_LineinVolumeSlider;
        caption = m_area.label_eParam_LineinVolume;
    }
    // Another box's value may stand in the slider by now.
    const bool isShown = m_box.ip == m_hub.state.deviceIp();
    const Item* device = m_hub.devices.model().find(m_box.ip);
    if (device && device->isOwned()) {
        if (isShown)
            slider->setValue(device->parameter(parameter).toInt());
        m_hub.isFree(*device);
        return;
    }
    if (isShown)
        slider->setValue(m_value);
    const QString failure = tr("控制 %1 失败,请重试!").arg(caption->text());
    const QString command = BoxProtocol::setCommand(parameter, QString::number(m_value), m_box.ip);
    if (m_hub.orders.run(m_box, {command}) == SequenceResult::SomeFailed)
        messageBox::tell(m_hub.orders.explained(m_box.ip, failure), m_hub.window);
}
