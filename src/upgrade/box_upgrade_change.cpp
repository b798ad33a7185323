// SPDX-License-Identifier: MIT
// A box from the reading of its settings to its activation.
#include "upgrade/box_upgrade.h"

#include "common/box_protocol.h"
#include "common/box_reply.h"
#include "upgrade/kept_settings.h"

#include <QFileInfo>

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;

constexpr int readTicks = 120;
/// What is read beside the upload begins so much later, not of all boxes at the same moment, and
/// may take so much longer.
constexpr int readPauseTicks = 1;
constexpr int readSpreadTicks = 5;
constexpr int lateReadTicks = 10;
/// The pause before an upload that was refused is tried again, in milliseconds: a box that refuses
/// at once must not keep the computer busy.
constexpr int uploadRetryMs = 400;
/// What is shown of a reply that is none; the log has all of it.
constexpr int longestReason = 400;

} // namespace

// --- what it has -------------------------------------------------------------------------------

void BoxUpgrade::readSettings()
{
    enter(Step::ReadingSettings);
    m_host.tell(*this, tr("正在读取设置"));
    m_reader.start(row().address, row().mac, readTicks,
                   [this](const QVariantMap& values, bool whole) {
                       if (!whole) {
                           row().settings = Settings::NotSaved;
                           leaveAlone(tr("设置未能完整读取，未升级"));
                           return;
                       }
                       row().saved = values;
                       row().absent = KeptSettings::missingFrom(values);
                       row().settings = Settings::Waiting;
                       m_link.expect();
                       m_host.settingsRead(*this, values);
                       switchDhcp();
                   });
}

/// The box is to be found again wherever it comes back. What it had is on disk before.
void BoxUpgrade::switchDhcp()
{
    enter(Step::SwitchingDhcp);
    row().dhcpForced = row().saved.value(BoxProtocol::DHCP) == QLatin1String("0");
    keep([this](bool kept) {
        if (m_step != Step::SwitchingDhcp)
            return;
        if (kept) {
            confirm(&BoxUpgrade::orderDhcp);
            return;
        }
        row().dhcpForced = false;
        if (!m_tookOver) {
            row().settings = Settings::NotSaved;
            m_host.writeBackEnded(*this);
        }
        leaveAlone(tr("升级记录无法写入磁盘，未升级"));
    });
}

void BoxUpgrade::orderDhcp()
{
    // Dropped meanwhile, or never told: nobody would undo it.
    if (row().settings != Settings::Waiting || !row().saved.contains(BoxProtocol::DHCP)) {
        row().dhcpForced = false;
        beginUploading();
        return;
    }
    m_link.write(row().address, BoxProtocol::DHCP, QStringLiteral("1"),
                 m_listener.hear([this](const QString&) { beginUploading(); }));
}

// --- what it gets ------------------------------------------------------------------------------

void BoxUpgrade::beginUploading()
{
    enter(Step::Uploading);
    row().stage = Stage::Uploading;
    tell(tr("开始上传固件(%1)").arg(QFileInfo(m_package.path).fileName()));
    // Nothing is done with these but to keep them: the other boxes' uploads start first.
    if (!m_keep && !m_tookOver)
        m_reader.start(
            row().address, row().mac, readTicks,
            [this](const QVariantMap& values, bool) {
                m_host.settingsRead(*this, values);
                if (m_uploaded)
                    activate();
            },
            readPauseTicks + row().address.right(1).toInt() % readSpreadTicks);
    // The version was asked after the identity, settings may have been read for minutes.
    confirm(&BoxUpgrade::upload);
}

void BoxUpgrade::upload()
{
    m_link.upload(row().address, m_package.path,
                  m_listener.hear([this](const QString& answer) { takeUpload(answer); }));
}

void BoxUpgrade::takeUpload(const QString& answer)
{
    const BoxReply reply(answer);
    if (reply.isSuccess() && reply.field("file_md5") == m_package.md5) {
        m_uploaded = true;
        // A try that failed before has been made good.
        m_timedOut = m_secondsLeft < 1;
        m_problem.clear();
        tell(tr("上传固件 成功"));
        if (m_reader.isReading())
            m_reader.hurry(lateReadTicks);
        else
            activate();
        return;
    }
    if (!answer.isEmpty()) {
        m_problem = tr("上传固件 失败 原因 : ") + answer.left(longestReason);
        m_timedOut = true;
        tell(m_problem);
    }
    later(&BoxUpgrade::uploadAgain, uploadRetryMs);
}

void BoxUpgrade::uploadAgain()
{
    m_host.tell(*this, tr("重新开始上传固件(%1)").arg(QFileInfo(m_package.path).fileName()));
    confirm(&BoxUpgrade::upload);
}

/// Somebody else may have given it another version since it was asked first: taken for the one
/// before, that would pass for a change of this upgrade.
void BoxUpgrade::activate()
{
    enter(Step::Activating);
    confirm(&BoxUpgrade::askVersionAgain);
}

void BoxUpgrade::askVersionAgain()
{
    askVersionBefore(&BoxUpgrade::keepActivation);
}

/// From here on the box may change over at any moment: that is on disk before it is told to.
void BoxUpgrade::keepActivation()
{
    row().stage = Stage::Activated;
    keep([this](bool kept) {
        if (m_step != Step::Activating)
            return;
        if (kept) {
            confirm(&BoxUpgrade::orderActivation);
            return;
        }
        leaveAlone(tr("升级记录无法写入磁盘，未升级"));
    });
}

void BoxUpgrade::orderActivation()
{
    m_ordered = true;
    tell(tr("开始更新固件"));
    m_link.order(row().address, BoxOrder::Activate,
                 m_orders.hear([this](const QString& answer) { takeActivation(answer); }));
    watch();
}

void BoxUpgrade::takeActivation(const QString& answer)
{
    if (m_step != Step::Activating)
        return;
    if (BoxReply(answer).isSuccess()) {
        succeed();
    } else if (!answer.isEmpty()) {
        m_refused = true;
        m_timedOut = true;
        tell(tr("更新固件 未知"));
    }
    // The box restarts to apply the firmware, so that its answer often never arrives: then it
    // counts once it has gone.
    m_step = Step::Away;
    m_host.changed(*this);
}

void BoxUpgrade::succeed()
{
    if (m_succeeded)
        return;
    m_succeeded = true;
    // Counted once, as one or the other, or the batch would never end.
    m_timedOut = false;
    tell(tr("更新固件 成功"));
}
