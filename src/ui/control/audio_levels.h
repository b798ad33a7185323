// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"
#include "ui/hub/orders.h"

#include <QObject>
#include <QTimer>

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
    AudioLevels(const Hub& hub, Ui::ControlArea& area);

    /// The timer whose timeout means that the slider rests.
    QTimer& timer() { return m_timer; }
    /// The slider of `parameter` has moved.
    void sliderMoved(const QSlider* slider, const QString& parameter);
    /// A slider has moved, and its value has not been sent yet.
    bool isWaiting() const { return m_timer.isActive(); }
    /// The slider has rested: sends its value, unless an upgrade has the box. Blocks, serving
    /// events.
    void send();

private:
    const Hub m_hub;
    Ui::ControlArea& m_area;
    QTimer m_timer;
    BoxId m_box;     ///< the box whose slider was dragged
    int m_value = 0; ///< where to: a read that arrives meanwhile may move the slider
};
