// SPDX-License-Identifier: MIT
#pragma once

#include "media/event_sockets.h"
#include "ui/hub/hub.h"
#include "ui/monitor/event_pane.h"

#include <QObject>

namespace Ui
{
class MonitorArea;
}

/// The monitor: the picture that fills the screen and comes back, and the feeds of the selected box
/// beside it.
class Monitor : public QObject
{
    Q_OBJECT

public:
    Monitor(const Hub& hub, Ui::MonitorArea& area);

    /// For the event filter of the video widget: true when `event` has been handled.
    bool filter(QEvent* event);

signals:
    void fullScreenWanted(bool on);
    /// How long the selected box has been recording, as it says.
    void recordTime(const QString& text);
    /// The same in milliseconds with every message of its stream feed; 0 when it carries none.
    void recordClock(qint64 ms);
    /// Its stream feed is gone, or could not be reached.
    void streamLost();
    /// Its feed at `port` stands, or is gone; the latter at every try to get it back.
    void feedChanged(quint16 port, bool isConnected);

private:
    void showFocus(bool on);

    const QWidget* m_window;
    QWidget* m_page; ///< around the picture
    EventSockets m_events;
    EventPane m_streamPane;
    EventPane m_mediaPane;
};
