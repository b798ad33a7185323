// SPDX-License-Identifier: MIT
#include "ui/recordings/record_control.h"

#include "common/box_protocol.h"
#include "common/command_runner.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"
#include "ui/recordings/recordings.h"
#include "widgets/message_box.h"

#include <QAbstractButton>
#include <QDateTime>
#include <QPointer>

namespace
{

/// The name of the recording that a command is about, kept with the command.
const char* const fileNameProperty = "recodefilename";

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
    m_limit.setSingleShot(true);
    m_limit.setInterval(CommandRunner::WaitLimitMs);
    connect(&m_limit, &QTimer::timeout, this, &RecordControl::giveUp);
    hub.exchange.onReply(BoxProtocol::RecordOn,
                         [this](const QProcess& process, const BoxReply& reply) {
                             handleStarted(process, reply.isSuccess());
                         });
    hub.exchange.onReply(BoxProtocol::RecordOff,
                         [this](const QProcess& process, const BoxReply& reply) {
                             handleStopped(process, reply.isSuccess());
                         });
    connect(&hub.state, &HubState::koraSelected, this, &RecordControl::showBox);
}

void RecordControl::setRecording(bool on)
{
    if (!m_hub.findSelectedDevice())
        m_widgets.record.setChecked(false); // before the message about it
    const Item* device = m_hub.selectedDevice();
    if (!device)
        return;
    const QString ip = device->address();
    QVariantMap keys{{QStringLiteral("deviceip"), ip}};
    QString command = BoxProtocol::controlCommand(BoxProtocol::RecordOff, ip);
    if (on) {
        const QString name = newFileName(m_widgets.mp4.isChecked());
        keys.insert(QLatin1String(fileNameProperty), name);
        command = BoxProtocol::recordOnCommand(ip, name);
    }
    wait(ip, !on);
    m_hub.runner.execCurl(ip, command, keys);
}

void RecordControl::showBox(const Item& box)
{
    if (box.address() == m_waitingIp)
        return;
    m_limit.stop();
    m_waitingIp.clear();
    m_widgets.group.setEnabled(true);
    m_widgets.record.setChecked(!box.recordingInProgress().isEmpty());
}

void RecordControl::wait(const QString& ip, bool wasRecording)
{
    m_waitingIp = ip;
    m_wasRecording = wasRecording;
    m_widgets.group.setEnabled(false);
    m_limit.start();
}

/// The check box speaks of the selected box only; another one's state shows when it is selected.
void RecordControl::settle(const QString& ip, bool recording)
{
    if (ip == m_waitingIp) {
        m_limit.stop();
        m_waitingIp.clear();
        m_widgets.group.setEnabled(true);
    }
    if (ip == m_hub.state.deviceIp())
        m_widgets.record.setChecked(recording);
}

void RecordControl::giveUp()
{
    const QString ip = m_waitingIp;
    const bool wasRecording = m_wasRecording;
    settle(ip, wasRecording);
    if (wasRecording)
        messageBox::ask(tr("停止录制失败,请重试."), m_hub.window);
}

void RecordControl::handleStarted(const QProcess& process, bool succeeded)
{
    const QString ip = process.property("deviceip").toString();
    if (Item* box = m_hub.devices.model().find(ip))
        box->setRecordingInProgress(process.property(fileNameProperty).toString());
    settle(ip, succeeded);
}

void RecordControl::handleStopped(const QProcess& process, bool succeeded)
{
    const QString ip = process.property("deviceip").toString();
    settle(ip, !succeeded);
    if (!succeeded) {
        messageBox::ask(tr("停止录制失败,请重试."), m_hub.window);
        return;
    }
    QString name;
    if (Item* box = m_hub.devices.model().find(ip)) {
        name = box->recordingInProgress();
        box->setRecordingInProgress(QString());
    }
    if (ip == m_hub.state.deviceIp())
        m_recordings.getDeviceRecordList();
    // One that was started elsewhere has no name we know, so there is nothing to offer.
    if (name.isEmpty())
        return;
    const QPointer<RecordControl> self(this);
    const QString question = BoxProtocol::fill(tr("录制完成,是否现在查看 [%1]"), {name});
    const int answer = messageBox::ask(question, m_hub.window);
    if (self && answer == messageBox::Confirmed)
        m_recordings.playWhenListed(ip, name);
}
