// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>
#include <QTimer>

class Busy;
class QSlider;
namespace Ui
{
class ControlArea;
}

/// The audio sliders: a value is sent once the dragged slider has rested for a moment.
class AudioLevels : public QObject
{
    Q_OBJECT

public:
    /// `busy` is that of the control area, shared by everything in it.
    AudioLevels(const Hub& hub, Ui::ControlArea& area, Busy& busy);

    /// The timer whose timeout means that the slider rests.
    QTimer& timer() { return m_timer; }
    /// The slider of `parameter` has moved.
    void sliderMoved(const QSlider* slider, const QString& parameter);
    /// The slider has rested: sends its value, unless an upgrade has the box. Blocks, serving
    /// events.
    void send();

private:
    const Hub m_hub;
    Ui::ControlArea& m_area;
    Busy& m_busy;
    QTimer m_timer;
    QString m_ip;    ///< the box whose slider was dragged
    int m_value = 0; ///< where to: a read that arrives meanwhile may move the slider
};
