// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>
#include <QTimer>

class CommandReplies;
class Item;
class ParameterPanel;
class QProcess;
class Recordings;
namespace Ui
{
class ControlArea;
}

/// Starts and stops recording on the selected box. The box's answer decides what the check box
/// shows; until it comes the controls wait.
class RecordControl : public QObject
{
    Q_OBJECT

public:
    RecordControl(const Hub& hub, Ui::ControlArea& area, ParameterPanel& panel,
                  Recordings& recordings);

    /// Takes the replies of "record_on" and "record_off".
    void registerReplies(CommandReplies& replies);
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
    Ui::ControlArea& m_area;
    ParameterPanel& m_panel;
    Recordings& m_recordings;
    QTimer m_limit;
    QString m_waitingIp; ///< the box that is to answer, empty: none
    bool m_wasRecording = false;
};
