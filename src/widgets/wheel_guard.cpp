// SPDX-License-Identifier: MIT
#include "widgets/wheel_guard.h"

#include <QEvent>
#include <QSlider>
#include <QSpinBox>

WheelGuard::WheelGuard(const QVector<QWidget*>& areas)
{
    for (const QWidget* area : areas) {
        for (QWidget* control : area->findChildren<QSpinBox*>())
            control->installEventFilter(this);
        for (QWidget* control : area->findChildren<QSlider*>())
            control->installEventFilter(this);
    }
}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Wheel)
        return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}
