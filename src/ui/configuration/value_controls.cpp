// SPDX-License-Identifier: MIT
#include "ui/configuration/value_controls.h"

#include "ui/configuration/configuration_area.h"
#include "ui/control/control_area.h"

#include <QEvent>

ValueControls::ValueControls(Ui::ConfigurationArea& config, Ui::ControlArea& control)
    : m_controls{config.eParam_NDIHXGopLength,      config.eParam_NDIHXBitRate,
                 control.eParam_SDIVolume,          control.eParam_LineinVolume,
                 control.eParam_LineinDelay,        config.eParam_NDIHXGopLengthSlider,
                 config.eParam_NDIHXBitRateSlider,  control.eParam_SDIVolumeSlider,
                 control.eParam_LineinVolumeSlider, control.eParam_LineinDelaySlider}
{
}

bool ValueControls::swallows(QObject* watched, QEvent* event) const
{
    if (event->type() != QEvent::Wheel)
        return false;
    for (const QWidget* control : m_controls) {
        if (control == watched) {
            event->ignore();
            return true;
        }
    }
    return false;
}
