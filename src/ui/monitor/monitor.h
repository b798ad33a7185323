// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class WindowFrame;
namespace Ui
{
class MonitorArea;
}

/// The monitor: the picture fills the screen and comes back.
class Monitor : public QObject
{
    Q_OBJECT

public:
    Monitor(Ui::MonitorArea& area, WindowFrame& frame);

    /// For the event filter of the video widget: true when `event` has been handled.
    bool filter(QEvent* event);

private:
    WindowFrame& m_frame;
};
