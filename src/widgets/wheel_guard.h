// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVector>

/// Keeps the spin boxes and sliders of some areas from changing while the operator scrolls over
/// them: a wheel event passes through to the area behind, which scrolls instead.
class WheelGuard : public QObject
{
    Q_OBJECT

public:
    /// Guards what the areas hold by now.
    explicit WheelGuard(const QVector<QWidget*>& areas);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
