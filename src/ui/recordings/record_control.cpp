// SPDX-License-Identifier: MIT
#include "ui/recordings/record_control.h"

#include "common/box_protocol.h"
#include "common/command_runner.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/configuration/parameter_panel.h"
#include "ui/control/control_area.h"
#include "ui/hub/command_replies.h"
#include "ui/hub/hub_state.h"
#include "ui/recordings/recordings.h"
#include "widgets/message_box.h"

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

RecordControl::RecordControl(const Hub& hub, Ui::ControlArea& area, ParameterPanel& panel,
                             Recordings& recordings)
    : QObject(nullptr), m_hub(hub), m_area(area), m_panel(panel), m_recordings(recordings)
{
    m_limit.setSingleShot(true);
    m_limit.setInterval(CommandRunner::WaitLimitMs);
    connect(&m_limit, &QTimer::timeout, this, &RecordControl::giveUp);
}

void RecordControl::registerReplies(CommandReplies& replies)
{
    using Handle = void (RecordControl::*)(const QProcess&, bool);
    const auto take = [this, &replies](const QString& action, Handle handle) {
        replies.on(action, [this, handle](const QProcess& process, const QVariantMap& reply) {
            const bool succeeded =
                reply.value(QStringLiteral("status")).toString() == QLatin1String("success");
            (this->*handle)(process, succeeded);
        });
    };
    take(QStringLiteral("record_on"), &RecordControl::handleStarted);
    take(QStringLiteral("record_off"), &RecordControl::handleStopped);
}

void RecordControl::setRecording(bool on)
{
    const QString ip = m_hub.state.deviceIp();
    if (!m_hub.devices.model().find(ip)) {
        m_area.recode->setChecked(false);
        messageBox::ask(tr("请您在设备列表中选择要操作的设备!"), m_hub.window);
        return;
    }
    QVariantMap keys{{QStringLiteral("deviceip"), ip}};
    QString command = BoxProtocol::controlCommand(QStringLiteral("record_off"), ip);
    if (on) {
        const QString name = newFileName(m_area.recodemp4->isChecked());
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
    m_area.group_record->setEnabled(true);
    m_area.recode->setChecked(!box.recordingInProgress().isEmpty());
}

void RecordControl::wait(const QString& ip, bool wasRecording)
{
    m_waitingIp = ip;
    m_wasRecording = wasRecording;
    m_area.group_record->setEnabled(false);
    m_limit.start();
}

/// The check box speaks of the selected box only; another one's state shows when it is selected.
void RecordControl::settle(const QString& ip, bool recording)
{
    if (ip == m_waitingIp) {
        m_limit.stop();
        m_waitingIp.clear();
        m_area.group_record->setEnabled(true);
    }
    if (ip == m_hub.state.deviceIp())
        m_area.recode->setChecked(recording);
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
        m_panel.getDeviceRecordList();
    // One that was started elsewhere has no name we know, so there is nothing to offer.
    if (name.isEmpty())
        return;
    const QPointer<RecordControl> self(this);
    const QString question = BoxProtocol::fill(tr("录制完成,是否现在查看 [%1]"), {name});
    const int answer = messageBox::ask(question, m_hub.window);
    if (self && answer == messageBox::Confirmed)
        m_recordings.playWhenListed(ip, name);
}
