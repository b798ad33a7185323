// SPDX-License-Identifier: MIT
#include "ui/monitor/monitor.h"

#include "ui/window/window_frame.h"
#include "ui_monitor_area.h"

#include <QKeyEvent>

Monitor::Monitor(Ui::MonitorArea& area, WindowFrame& frame) : QObject(nullptr), m_frame(frame)
{
    // Escape reaches the picture only while it has the focus.
    area.video_widget->setFocusPolicy(Qt::ClickFocus);
}

bool Monitor::filter(QEvent* event)
{
    if (event->type() == QEvent::MouseButtonDblClick) {
        m_frame.setFullScreen(!m_frame.isFullScreen());
        return true;
    }
    if (event->type() == QEvent::KeyPress && m_frame.isFullScreen() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        m_frame.setFullScreen(false);
        return true;
    }
    return false;
}
