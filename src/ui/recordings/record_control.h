// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"
#include "ui/recordings/record_watch.h"

#include <QHash>
#include <QObject>
#include <QSet>

class Item;
class QAbstractButton;
class QProcess;
class QWidget;
class Recordings;

/// Starts and stops recording on the selected box. What the box answers, and its running clock,
/// decide what the check box shows; until an answer comes the controls of that box wait.
class RecordControl : public QObject
{
    Q_OBJECT

public:
    struct Widgets {
        QWidget& group;          ///< all of them, disabled while the box has not answered
        QAbstractButton& record; ///< checked while the selected box records
        QAbstractButton& mp4;    ///< checked: as MP4, else as MOV
    };

    /// How long a box may take to answer, in milliseconds: it may have to complete a file.
    static constexpr int AnswerLimitMs = 6000;

    /// The widgets and `recordings` outlive this object.
    RecordControl(const Hub& hub, const Widgets& widgets, Recordings& recordings);

    /// Lets the selected box record, or stop. Blocks, serving events, only to say why it does not;
    /// the box's answer comes later.
    void setRecording(bool on);
    /// At `ip` answers the box with this MAC address.
    void noteMac(const QString& ip, const QString& mac);
    /// Why the selected box can be told nothing, empty when it can. What records can be stopped.
    void setHindrance(const QString& why);
    /// To be told of the selected box's feed.
    RecordWatch& watch() { return m_watch; }

private:
    /// A command that the box has not answered.
    struct Command {
        int number = 0;
        bool on = false;
        QString name; ///< of the recording that is to begin
    };

    bool isRecording(const Item& box) const;
    void show();
    void showBox(const Item& box);
    void followClock(const QString& ip);
    bool takePending(const QProcess& process);
    void handleStarted(const QProcess& process, bool succeeded);
    void handleStopped(const QProcess& process, bool succeeded);
    void handleNotSent(const QString& ip, int number);
    void giveUp(const QString& ip, int number);
    void noteStarted(const QString& ip, const QString& name);
    void noteStopped(const QString& ip);
    void noteRefusal(const QString& ip, bool on);
    void offerToView(const QString& ip, const QString& name);
    void tell(const QString& ip, const QString& text);
    QString named(const QString& ip, const QString& text) const;

    const Hub m_hub;
    const Widgets m_widgets;
    Recordings& m_recordings;
    RecordWatch m_watch;
    QHash<QString, Command> m_pending; ///< by the address of the box
    int m_lastNumber = 0;
    QString m_hindrance;
    QHash<QString, bool> m_refused; ///< the order that a box has refused last: on or off
    QSet<QString> m_unnamed;        ///< boxes that are taken to record, under a name nobody knows
    QHash<QString, QString> m_macs; ///< of the boxes at these addresses, as last told
};
