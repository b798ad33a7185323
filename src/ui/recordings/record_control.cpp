// SPDX-License-Identifier: MIT
#include "ui/recordings/record_control.h"

#include "common/box_protocol.h"
#include "common/box_reply.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/hub/availability.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"
#include "ui/hub/orders.h"
#include "ui/recordings/recordings.h"
#include "widgets/message_box.h"

#include <QAbstractButton>
#include <QDateTime>
#include <QPointer>
#include <QTimer>

namespace
{

/// The name of the recording that a command is about, kept with the command.
const char* const fileNameProperty = "recodefilename";
/// Which of the commands to its box it is: an answer may come after the next one was sent.
const char* const numberProperty = "recordnumber";

QString newFileName(bool mp4)
{
    const QString pattern =
        mp4 ? QStringLiteral("Tarn_Hub_Recode%1.mp4") : QStringLiteral("Tarn_Hub_Recode%1.mov");
    return pattern.arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMddhhmmss")));
}

} // namespace

RecordControl::RecordControl(const Hub& hub, const Widgets& widgets, Recordings& recordings)
    : QObject(nullptr), m_hub(hub), m_widgets(widgets), m_recordings(recordings)
{
    hub.exchange.onReply(BoxProtocol::RecordOn,
                         [this](const QProcess& process, const BoxReply& reply) {
                             handleStarted(process, reply.isSuccess());
                         });
    hub.exchange.onReply(BoxProtocol::RecordOff,
                         [this](const QProcess& process, const BoxReply& reply) {
                             handleStopped(process, reply.isSuccess());
                         });
    connect(&hub.state, &HubState::koraSelected, this, &RecordControl::showBox);
    connect(&m_watch, &RecordWatch::changed, this, &RecordControl::followClock);
}

void RecordControl::setRecording(bool on)
{
    const Item* selected = m_hub.findSelectedDevice();
    // Before the message about it.
    if (!selected || selected->isOwned())
        m_widgets.record.setChecked(selected && isRecording(*selected));
    const Item* device = m_hub.freeDevice();
    if (!device)
        return;
    const QString ip = device->address();
    QVariantMap keys{{QStringLiteral("deviceip"), ip}};
    QString command = BoxProtocol::controlCommand(BoxProtocol::RecordOff, ip);
    QString name;
    if (on) {
        name = newFileName(m_widgets.mp4.isChecked());
        keys.insert(QLatin1String(fileNameProperty), name);
        command = BoxProtocol::recordOnCommand(ip, name);
    }
    const int number = ++m_lastNumber;
    keys.insert(QLatin1String(numberProperty), number);
    m_pending.insert(ip, {number, on, name});
    Availability::hinder(m_widgets.group, "answer", QString());
    m_hub.orders.send(BoxId::of(*device), command, keys, this, [this, ip, number](bool isSent) {
        if (isSent)
            QTimer::singleShot(AnswerLimitMs, this, [this, ip, number] { giveUp(ip, number); });
        else
            handleNotSent(ip, number);
    });
}

void RecordControl::handleNotSent(const QString& ip, int number)
{
    const Command command = m_pending.value(ip);
    if (command.number != number)
        return;
    m_pending.remove(ip);
    show();
    const QString failure = command.on ? tr("开启录制失败，请重试。") : tr("停止录制失败,请重试.");
    tell(ip, m_hub.orders.explained(ip, failure));
}

/// What was learned of the box before it does not hold for another one that has its address.
void RecordControl::noteMac(const QString& ip, const QString& mac)
{
    const QString before = m_macs.value(ip, mac);
    m_macs.insert(ip, mac);
    if (BoxProtocol::isSameMac(before, mac))
        return;
    m_unnamed.remove(ip);
    m_refused.remove(ip);
    m_watch.forget(ip);
    if (Item* box = m_hub.devices.model().find(ip))
        box->setRecordingInProgress(QString());
    show();
}

/// What its clock says; without one, what it has last answered.
bool RecordControl::isRecording(const Item& box) const
{
    switch (m_watch.clock(box.address())) {
    case RecordWatch::Clock::Runs:
        return true;
    case RecordWatch::Clock::Stopped:
        // A feed that is gone says nothing against what was learned since.
        if (m_watch.isAlive() || !m_unnamed.contains(box.address()))
            return false;
        break;
    case RecordWatch::Clock::Unknown:
        break;
    }
    return m_unnamed.contains(box.address()) || !box.recordingInProgress().isEmpty();
}

/// The check box speaks of the selected box only; another one's state shows when it is selected.
void RecordControl::show()
{
    const Item* box = m_hub.findSelectedDevice();
    const bool isWaiting = m_pending.contains(m_hub.state.deviceIp());
    if (isWaiting)
        Availability::hinder(m_widgets.group, "answer", QString());
    else
        Availability::release(m_widgets.group, "answer");
    if (!isWaiting)
        m_widgets.record.setChecked(box && isRecording(*box));
    Availability::set(m_widgets.group, "unread",
                      m_widgets.record.isChecked() ? QString() : m_hindrance);
}

void RecordControl::setHindrance(const QString& why)
{
    m_hindrance = why;
    show();
}

void RecordControl::showBox(const Item& box)
{
    m_watch.pointAt(box.address());
    m_widgets.record.setChecked(isRecording(box));
    show();
}

void RecordControl::followClock(const QString& ip)
{
    Item* box = m_hub.devices.model().find(ip);
    // A box that can be heard and whose clock stands has ended what it recorded, or lost it.
    if (box && m_watch.isAlive() && m_watch.clock(ip) == RecordWatch::Clock::Stopped &&
        !m_pending.contains(ip)) {
        box->setRecordingInProgress(QString());
        m_unnamed.remove(ip);
    }
    show();
}

/// True when the box was to answer this very command; it is no longer.
bool RecordControl::takePending(const QProcess& process)
{
    const auto command = m_pending.find(process.property("deviceip").toString());
    if (command == m_pending.end() || command->number != process.property(numberProperty).toInt())
        return false;
    m_pending.erase(command);
    return true;
}

void RecordControl::giveUp(const QString& ip, int number)
{
    const Command command = m_pending.value(ip);
    if (command.number != number)
        return;
    m_pending.remove(ip);
    // The answer may be lost and the deed done.
    const RecordWatch::Clock clock = m_watch.clock(ip);
    if (command.on && clock == RecordWatch::Clock::Runs) {
        noteStarted(ip, command.name);
    } else if (!command.on && clock == RecordWatch::Clock::Stopped) {
        noteStopped(ip);
    } else {
        show();
        tell(ip, command.on ? tr("开启录制失败，请重试。") : tr("停止录制失败,请重试."));
    }
}

void RecordControl::handleStarted(const QProcess& process, bool succeeded)
{
    const QString ip = process.property("deviceip").toString();
    const bool wasPending = takePending(process);
    if (succeeded)
        noteStarted(ip, process.property(fileNameProperty).toString());
    else
        noteRefusal(ip, true);
    // One that was given up has been told of.
    if (!succeeded && wasPending)
        tell(ip, tr("开启录制失败，请重试。"));
}

void RecordControl::handleStopped(const QProcess& process, bool succeeded)
{
    const QString ip = process.property("deviceip").toString();
    const bool wasPending = takePending(process);
    if (succeeded) {
        noteStopped(ip);
        return;
    }
    noteRefusal(ip, false);
    if (wasPending)
        tell(ip, tr("停止录制失败,请重试."));
}

void RecordControl::noteStarted(const QString& ip, const QString& name)
{
    m_refused.remove(ip);
    m_unnamed.remove(ip);
    if (Item* box = m_hub.devices.model().find(ip))
        box->setRecordingInProgress(name);
    if (m_watch.clock(ip) != RecordWatch::Clock::Runs)
        m_watch.noteStart(ip);
    show();
}

void RecordControl::noteStopped(const QString& ip)
{
    m_refused.remove(ip);
    m_unnamed.remove(ip);
    QString name;
    if (Item* box = m_hub.devices.model().find(ip)) {
        name = box->recordingInProgress();
        box->setRecordingInProgress(QString());
    }
    m_watch.noteStop(ip);
    show();
    if (ip == m_hub.state.deviceIp())
        m_recordings.getDeviceRecordList();
    // One that was started elsewhere has no name we know, so there is nothing to offer.
    if (!name.isEmpty())
        offerToView(ip, name);
}

/// A box refuses to stop, too, when it does not record, and to start when it does. Without a clock
/// that tells, the second refusal counts as that: the operator must be able to do the other.
void RecordControl::noteRefusal(const QString& ip, bool on)
{
    const bool isSecond = m_refused.contains(ip) && m_refused.value(ip) == on;
    m_refused.insert(ip, on);
    const bool isDenied = m_watch.isAlive() && m_watch.clock(ip) == RecordWatch::Clock::Stopped;
    Item* box = m_hub.devices.model().find(ip);
    if (isSecond && on && !isDenied) {
        m_unnamed.insert(ip);
    } else if (isSecond && !on) {
        m_unnamed.remove(ip);
        if (box)
            box->setRecordingInProgress(QString());
    }
    show();
}

/// The answer is about this moment: it is void when another box has been selected meanwhile.
void RecordControl::offerToView(const QString& ip, const QString& name)
{
    const QString selected = m_hub.state.deviceIp();
    const QPointer<RecordControl> self(this);
    const QString question = BoxProtocol::fill(tr("录制完成,是否现在查看 [%1]"), {name});
    const int answer = messageBox::ask(named(ip, question), m_hub.window);
    if (self && answer == messageBox::Confirmed && m_hub.state.deviceIp() == selected)
        m_recordings.playNamed(ip, name);
}

void RecordControl::tell(const QString& ip, const QString& text)
{
    messageBox::tell(named(ip, text), m_hub.window);
}

/// The operator may have gone on to another box: then `text` says which one it is about.
QString RecordControl::named(const QString& ip, const QString& text) const
{
    return ip == m_hub.state.deviceIp() ? text : ip + QStringLiteral(": ") + text;
}
