// SPDX-License-Identifier: MIT
#include "ui/monitor/monitor.h"

#include "device/item.h"
#include "ui/hub/hub_state.h"
#include "ui_monitor_area.h"

#include <QKeyEvent>

Monitor::Monitor(const Hub& hub, Ui::MonitorArea& area)
    : QObject(nullptr)
    , m_window(hub.window)
    , m_events(nullptr)
    , m_streamPane(m_events.stream(), area.plainTextEdit_Stream)
    , m_mediaPane(m_events.media(), area.plainTextEdit_Media)
{
    // Escape reaches the picture only while it has the focus.
    area.video_widget->setFocusPolicy(Qt::ClickFocus);
    connect(&m_events, &EventSockets::recordTime, this, &Monitor::recordTime);
    connect(&m_events, &EventSockets::recordClock, this, &Monitor::recordClock);
    connect(&m_events.stream(), &EventSocket::reconnecting, this, &Monitor::streamLost);
    for (EventSocket* feed : {&m_events.stream(), &m_events.media()}) {
        connect(feed, &EventSocket::connected, this,
                [this, feed] { emit feedChanged(feed->port(), true); });
        connect(feed, &EventSocket::reconnecting, this,
                [this, feed] { emit feedChanged(feed->port(), false); });
    }
    connect(&hub.state, &HubState::koraSelected, this,
            [this](const Item& box) { m_events.connectTo(box.address()); });
}

bool Monitor::filter(QEvent* event)
{
    if (event->type() == QEvent::MouseButtonDblClick) {
        emit fullScreenWanted(!m_window->isFullScreen());
        return true;
    }
    if (event->type() == QEvent::KeyPress && m_window->isFullScreen() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        emit fullScreenWanted(false);
        return true;
    }
    return false;
}
