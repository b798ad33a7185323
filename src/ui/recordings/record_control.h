// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>
#include <QTimer>

class Item;
class QAbstractButton;
class QProcess;
class QWidget;
class Recordings;

/// Starts and stops recording on the selected box. The box's answer decides what the check box
/// shows; until it comes the controls wait.
class RecordControl : public QObject
{
    Q_OBJECT

public:
    struct Widgets {
        QWidget& group;          ///< all of them, disabled while the box has not answered
        QAbstractButton& record; ///< checked while the selected box records
        QAbstractButton& mp4;    ///< checked: as MP4, else as MOV
    };

    /// The widgets and `recordings` outlive this object.
    RecordControl(const Hub& hub, const Widgets& widgets, Recordings& recordings);

    /// Lets the selected box record, or stop. Blocks, serving events, only to say that no box is
    /// selected; the box's answer comes later.
    void setRecording(bool on);
    /// Another box has been selected: shows whether that one records.
    void showBox(const Item& box);

private:
    void wait(const QString& ip, bool wasRecording);
    void settle(const QString& ip, bool recording);
    void handleStarted(const QProcess& process, bool succeeded);
    void handleStopped(const QProcess& process, bool succeeded);
    void giveUp();

    const Hub m_hub;
    const Widgets m_widgets;
    Recordings& m_recordings;
    QTimer m_limit;
    QString m_waitingIp; ///< the box that is to answer, empty: none
    bool m_wasRecording = false;
};
