// SPDX-License-Identifier: MIT
// What a row shows of an upgrade; the commands that an item runs for its box: download, deletion.
#include "device/item.h"

#include "common/box_protocol.h"
#include "common/box_reply.h"

namespace
{

// What a command is for, kept with it.
const QString deletionKind = QStringLiteral("record_del");

} // namespace

void Item::showUpgrade(const ItemUpgrade& state)
{
    setUpgrading(state.upgrading);
    setTimedOut(state.timedOut);
    setSucceeded(state.succeeded);
    setUploaded(state.uploaded);
    setActivated(state.succeeded);
    setSecondsLeft(state.secondsLeft);
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
    if (type == deletionKind && !reply.isEmpty())
        process->setProperty("deleted", BoxReply(reply).isSuccess());
}

void Item::R_stateChanged(QProcess::ProcessState state)
{
    auto* process = qobject_cast<QProcess*>(sender());
    if (!process || state != QProcess::NotRunning)
        return;
    m_runner.takeRest(process);
    m_runner.noteEnd(process);
    const QString type = process->property("exectype").toString();
    if (type == deletionKind)
        emit deleteEnded(process->property("deleted").toBool());
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
