// SPDX-License-Identifier: MIT
#include "ui/monitor/monitor.h"

#include "device/item.h"
#include "ui/hub/hub_state.h"
#include "ui_monitor_area.h"

#include <QKeyEvent>
#include <QStyle>
#include <QVariant>

Monitor::Monitor(const Hub& hub, Ui::MonitorArea& area)
    : QObject(nullptr)
    , m_window(hub.window)
    , m_page(area.page_video)
    , m_events(nullptr)
    , m_streamPane(m_events.stream(), area.plainTextEdit_Stream)
    , m_mediaPane(m_events.media(), area.plainTextEdit_Media)
{
    // Escape reaches the picture only while it has the focus, and so does the key of its menu.
    area.video_widget->setFocusPolicy(Qt::StrongFocus);
    showFocus(false);
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

/// Who comes by key sees where the keys are; on a picture that was clicked a frame would only
/// disturb.
void Monitor::showFocus(bool on)
{
    m_page->setProperty("keyFocus", on);
    m_page->style()->unpolish(m_page);
    m_page->style()->polish(m_page);
}

bool Monitor::filter(QEvent* event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        const bool byTab = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
        // A menu, or another window, gives back what it took.
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason)
            showFocus(event->type() == QEvent::FocusIn && byTab);
    }
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
