// SPDX-License-Identifier: MIT
// The commands that an item runs for its box: upgrade, download, deletion.
#include "device/item.h"

#include "common/box_protocol.h"
#include "common/box_reply.h"

#include <QFileInfo>
#include <QTimer>

namespace
{

/// The pause before an upload that was refused is tried again, in milliseconds: a box that refuses
/// at once must not keep the computer busy.
constexpr int uploadRetryPauseMs = 400;

/// What is shown of a reply that is none; the log has all of it.
constexpr int longestReason = 400;

// What a command is for, kept with it.
const QString uploadKind = QStringLiteral("upgrade_ota_file");
const QString activationKind = QStringLiteral("upgrade_ota");
const QString deletionKind = QStringLiteral("record_del");

} // namespace

void Item::reserveForUpgrade()
{
    endUpgrade();
    setUpgrading(true);
    setTimedOut(false);
    setSucceeded(false);
    setSecondsLeft(UpgradeAllowance);
    setUploaded(false);
    setActivated(false);
    m_uploadProblem.clear();
}

void Item::startUpgrade(const QString& file, const QString& md5)
{
    reserveForUpgrade();
    addTip(tr("开始上传固件(%1)").arg(QFileInfo(file).fileName()));
    upload(file, md5);
    emit upgradeChanged();
}

bool Item::countDown()
{
    if (!isUpgrading() || hasSucceeded())
        return false;
    const int left = secondsLeft();
    if (left < 1)
        setTimedOut(true);
    else
        setSecondsLeft(left - 1);
    return true;
}

void Item::endUpgrade()
{
    ++m_upgradeRun;
    setUpgrading(false);
    if (m_upload)
        CommandRunner::stop(m_upload);
}

void Item::upload(const QString& file, const QString& md5)
{
    execCurl(BoxProtocol::uploadCommand(file, address()), {{QStringLiteral("exectype"), uploadKind},
                                                           {QStringLiteral("ota_file"), file},
                                                           {QStringLiteral("md5"), md5},
                                                           {QStringLiteral("run"), m_upgradeRun}});
}

void Item::execCurl(const QString& str, const QVariantMap& map)
{
    m_runner.execCurl(address(), str, map);
}

void Item::R_readyReadStandardOutput()
{
    auto* process = qobject_cast<QProcess*>(sender());
    if (!process)
        return;
    const QString type = process->property("exectype").toString();
    const QString reply = m_runner.takeReply(process);
    if (type == uploadKind) {
        if (process->property("run").toInt() == m_upgradeRun)
            handleUploadReply(*process, reply);
    } else if (type == activationKind) {
        if (process->property("run").toInt() == m_upgradeRun)
            handleActivationReply(reply);
    } else if (type == deletionKind) {
        process->setProperty("deleted", BoxReply(reply).isSuccess());
    }
}

void Item::handleUploadReply(const QProcess& process, const QString& reply)
{
    const BoxReply answer(reply);
    if (!answer.isSuccess() || answer.field("file_md5") != process.property("md5").toString()) {
        const QString tip = tr("上传固件 失败 原因 : ") + reply.left(longestReason);
        addTip(tip);
        m_uploadProblem = tip;
        setTimedOut(true);
        emit upgradeChanged();
        return;
    }
    if (isUploaded())
        return;
    setUploaded(true);
    // A try that failed before has been made good.
    setTimedOut(false);
    addTip(tr("上传固件 成功"));
    addTip(tr("开始更新固件"));
    execCurl(BoxProtocol::otaCommand(address()),
             {{QStringLiteral("exectype"), activationKind}, {QStringLiteral("run"), m_upgradeRun}});
    emit upgradeChanged();
}

void Item::handleActivationReply(const QString& reply)
{
    if (BoxReply(reply).isSuccess())
        markActivated();
    else
        addTip(tr("更新固件 未知"));
}

void Item::markActivated()
{
    setActivated(true);
    if (hasSucceeded())
        return;
    addTip(tr("更新固件 成功"));
    setSucceeded(true);
    // Counted once, as one or the other, or the batch would never end.
    setTimedOut(false);
    emit upgradeChanged();
}

void Item::R_stateChanged(QProcess::ProcessState state)
{
    auto* process = qobject_cast<QProcess*>(sender());
    if (!process || state != QProcess::NotRunning)
        return;
    m_runner.noteEnd(process);
    const QString type = process->property("exectype").toString();
    if (type == deletionKind) {
        emit deleteEnded(process->property("deleted").toBool());
    } else if (type == activationKind && process->property("run").toInt() == m_upgradeRun) {
        // The box restarts to apply the firmware, so that its reply often never arrives.
        markActivated();
    } else if (type == uploadKind && process->property("run").toInt() == m_upgradeRun &&
               !isUploaded()) {
        const QString file = process->property("ota_file").toString();
        const QString md5 = process->property("md5").toString();
        QTimer::singleShot(uploadRetryPauseMs, this, [this, file, md5, run = m_upgradeRun] {
            // The batch may have ended meanwhile.
            if (run != m_upgradeRun || !isUpgrading())
                return;
            addTip(tr("重新开始上传固件(%1)").arg(QFileInfo(file).fileName()));
            upload(file, md5);
        });
    }
}

void Item::record_del()
{
    const QString filename = fileName();
    execCurl(BoxProtocol::recordDeleteCommand(filename, address()),
             {{QStringLiteral("exectype"), deletionKind}, {QStringLiteral("filename"), filename}});
}

void Item::download(const QString& folder)
{
    if (m_download)
        return;
    m_download = std::make_unique<RecordingDownload>(folder, recordingSource());
    connect(m_download.get(), &RecordingDownload::progressed, this, &Item::downloadProgressed);
    connect(m_download.get(), &RecordingDownload::ended, this,
            [this](const DownloadResult& result) {
                // It is the sender of the signal that brought us here.
                m_download.release()->deleteLater();
                emit downloadEnded(result);
            });
    m_download->start();
}

void Item::cancelDownload()
{
    if (m_download)
        m_download->cancel();
}
