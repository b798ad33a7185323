// SPDX-License-Identifier: MIT
#include "ui/upgrade/upgrade_report.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "common/spark_http.h"
#include "device/item.h"

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;

constexpr int shortestPollMs = 500;
constexpr int savePauseMs = 200;
constexpr int pollTicks = 2;
/// How long a box may stay away, from its activation or the end of the batch.
constexpr int patienceTicks = 600;
/// A box that was told to change over and neither went away nor changed may still be busy with it
/// for so long; then it has ignored the order.
constexpr int quietTicks = 60;
/// One request lost on a busy network does not mean that a box is down.
constexpr int missedWhenDown = 2;
constexpr int longestVersion = 64;

bool sameMac(const QString& a, const QString& b)
{
    return !a.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
}

/// Why the last upload failed, if the box said so; else how far the upgrade has come.
QString lastTip(const Item* item)
{
    const QString reason = item ? item->uploadProblem() : QString();
    if (!reason.isEmpty())
        return reason;
    const QStringList tips = item ? item->tips() : QStringList();
    return tips.isEmpty() ? QString() : tips.last();
}

} // namespace

UpgradeReport::UpgradeReport(const Hub& hub, int tickMs)
    : QObject(nullptr), m_hub(hub), m_tickMs(tickMs)
{
    m_poll.setInterval(qMax(shortestPollMs, pollTicks * tickMs));
    m_save.setInterval(savePauseMs);
    m_save.setSingleShot(true);
    connect(&m_poll, &QTimer::timeout, this, &UpgradeReport::poll);
    connect(&m_save, &QTimer::timeout, this, &UpgradeReport::saveTouched);
    connect(&m_journal, &UpgradeJournal::loaded, this, &UpgradeReport::adopt);
}

UpgradeReport::~UpgradeReport()
{
    saveTouched();
}

bool UpgradeReport::ticksPassed(const QElapsedTimer& since, int ticks) const
{
    return since.isValid() && since.elapsed() > qint64(ticks) * m_tickMs;
}

QVector<const UpgradeSession*> UpgradeReport::sessions() const
{
    QVector<const UpgradeSession*> all;
    for (const auto& session : m_sessions)
        all << session.get();
    return all;
}

void UpgradeReport::begin(const QString& package, const QString& md5)
{
    auto session = std::make_unique<UpgradeSession>();
    session->started = QDateTime::currentDateTime();
    session->package = package;
    session->md5 = md5;
    m_sessions.push_back(std::move(session));
}

void UpgradeReport::addBox(Item* box, bool keepSettings)
{
    UpgradeSession* session = m_sessions.back().get();
    UpgradeRow row;
    row.mac = box->macAddress();
    row.addressBefore = row.address = box->address();
    row.versionBefore = box->firmwareVersion().left(longestVersion);
    row.started = QDateTime::currentDateTime();
    row.settings = keepSettings ? Settings::NotSaved : Settings::NotKept;
    session->rows << row;
    auto watch = std::make_unique<Watch>();
    watch->session = session;
    watch->index = session->rows.size() - 1;
    watch->item = box;
    connect(box, &Item::upgradeChanged, this, [this, w = watch.get()] { noteProgress(*w); });
    m_watches.push_back(std::move(watch));
    touched(session);
}

/// The latest upgrade of a box is the one that its answers belong to.
UpgradeReport::Watch* UpgradeReport::watchOf(const QString& mac)
{
    for (auto it = m_watches.rbegin(); it != m_watches.rend(); ++it) {
        if (sameMac((*it)->row().mac, mac))
            return it->get();
    }
    return nullptr;
}

const UpgradeReport::Watch* UpgradeReport::watchOf(const QString& mac) const
{
    return const_cast<UpgradeReport*>(this)->watchOf(mac);
}

void UpgradeReport::noteProgress(Watch& watch)
{
    UpgradeRow& row = watch.row();
    // An item that is upgraded once more reports to its latest row only.
    if (!watch.item || watch.sinceEnd.isValid())
        return;
    if (row.mac.isEmpty())
        row.mac = watch.item->macAddress();
    if (!row.mac.isEmpty() && watchOf(row.mac) != &watch)
        return;
    if (watch.item->isUploaded()) {
        if (row.stage != Stage::Activated)
            watch.sinceOrder.start();
        row.stage = Stage::Activated;
    } else {
        row.stage = Stage::Uploading;
    }
    row.note = lastTip(watch.item);
    touched(watch.session);
}

void UpgradeReport::setSaved(const QString& mac, const QVariantMap& values, bool whole)
{
    Watch* watch = watchOf(mac);
    if (!watch)
        return;
    watch->row().saved = values;
    watch->row().settings = whole ? Settings::Waiting : Settings::NotSaved;
    touched(watch->session);
}

void UpgradeReport::setDhcpForced(const QString& mac)
{
    if (Watch* watch = watchOf(mac)) {
        watch->row().dhcpForced = true;
        touched(watch->session);
    }
}

void UpgradeReport::batchEnded()
{
    for (const auto& watch : m_watches) {
        if (watch->sinceEnd.isValid())
            continue;
        watch->sinceEnd.start();
        UpgradeRow& row = watch->row();
        if (row.stage == Stage::Preparing || row.stage == Stage::Uploading) {
            row.stage = Stage::UploadFailed;
            row.note = lastTip(watch->item);
            row.durationMs = row.started.msecsTo(QDateTime::currentDateTime());
        }
        judge(*watch);
        touched(watch->session);
    }
}

bool UpgradeReport::mayWriteBack(const QString& mac, const QString& ip) const
{
    const Watch* watch = watchOf(mac);
    if (!watch)
        return true;
    const UpgradeRow& row = watch->row();
    if (row.stage == Stage::Preparing || row.stage == Stage::Uploading)
        return false;
    // The order to change over is still unanswered: a restart would end it, and pass for success.
    if (watch->item && watch->item->isUpgrading() && !watch->item->hasSucceeded())
        return false;
    if (row.stage == Stage::UploadFailed && !watch->restarting)
        return true;
    const bool back = watch->wasDown || ticksPassed(watch->sinceOrder, quietTicks);
    if (watch->restarting)
        return back;
    return back || row.reportsNewVersion() || ip != row.addressBefore;
}

void UpgradeReport::setRestarting(const QString& mac)
{
    if (Watch* watch = watchOf(mac)) {
        watch->restarting = true;
        watch->wasDown = false;
        watch->missed = 0;
        watch->sinceOrder.start();
    }
}

void UpgradeReport::setRestored(const QString& mac, Settings outcome, const QStringList& failed)
{
    Watch* watch = watchOf(mac);
    if (!watch)
        return;
    UpgradeRow& row = watch->row();
    // Of settings that were never read whole only the address was put back.
    if (row.settings != Settings::NotSaved)
        row.settings = outcome;
    row.failedSettings = failed;
    row.saved.clear();
    judge(*watch);
    touched(watch->session);
}

void UpgradeReport::dropSettings(const QStringList& macs)
{
    for (const QString& mac : macs)
        setRestored(mac, Settings::Dropped, {});
}

void UpgradeReport::noteMac(const QString& ip, const QString& mac)
{
    Watch* watch = watchOf(mac);
    if (!watch)
        return;
    UpgradeRow& row = watch->row();
    if (row.stage == Stage::Preparing || row.stage == Stage::Uploading)
        return;
    watch->missed = 0;
    if (row.address != ip) {
        row.address = ip;
        touched(watch->session);
    }
    m_hub.http.get(versionType() + row.mac, BoxProtocol::readUrl(ip, BoxProtocol::FirmVersion),
                   false);
}

void UpgradeReport::handleSeen(const HttpResult& result)
{
    Watch* watch = watchOf(result.type.mid(seenType().size()));
    if (!watch)
        return;
    watch->asked = false;
    // Another box may have got the address meanwhile.
    if (sameMac(result.value.toString(), watch->row().mac)) {
        noteMac(result.deviceIp, watch->row().mac);
        return;
    }
    if (++watch->missed >= missedWhenDown)
        watch->wasDown = true;
}

void UpgradeReport::handleVersion(const HttpResult& result)
{
    Watch* watch = watchOf(result.type.mid(versionType().size()));
    const QString version = result.value.toString().left(longestVersion);
    if (!watch || version.isEmpty() || result.deviceIp != watch->row().address)
        return;
    watch->reported = version;
    UpgradeRow& row = watch->row();
    const QString before = row.versionAfter;
    // A box that has not gone away yet tells the version that it is about to leave.
    if (version != row.versionBefore || watch->wasDown)
        row.versionAfter = version;
    judge(*watch);
    if (row.settled || row.versionAfter != before)
        touched(watch->session);
    emit seen(result.deviceIp, row.mac);
}

/// Has the last word been spoken about this box?
void UpgradeReport::judge(Watch& watch)
{
    UpgradeRow& row = watch.row();
    const bool tooLate = ticksPassed(watch.sinceEnd, patienceTicks);
    if (tooLate && row.versionAfter.isEmpty())
        row.versionAfter = watch.reported;
    // Without its MAC address nobody can tell whether the box that answers is the same one.
    const bool certain =
        row.stage == Stage::UploadFailed || row.reportsNewVersion() ||
        (row.stage == Stage::Activated &&
         (row.mac.isEmpty() ? watch.sinceEnd.isValid() : !row.versionAfter.isEmpty()));
    if ((certain || tooLate) && row.durationMs == 0)
        row.durationMs = row.started.msecsTo(QDateTime::currentDateTime());
    if (watch.sinceEnd.isValid())
        row.settled = tooLate || (certain && row.settings != Settings::Waiting);
}

void UpgradeReport::poll()
{
    bool open = false;
    for (const auto& watch : m_watches) {
        UpgradeRow& row = watch->row();
        if (row.settled)
            continue;
        open = true;
        if (row.stage == Stage::Preparing || row.stage == Stage::Uploading)
            continue;
        judge(*watch);
        if (row.settled)
            touched(watch->session);
        if (watch->asked || row.settled || row.mac.isEmpty() || watchOf(row.mac) != watch.get())
            continue;
        watch->asked = true;
        m_hub.http.get(seenType() + row.mac,
                       BoxProtocol::readUrl(row.address, BoxProtocol::MACAddress), false);
    }
    if (!open)
        m_poll.stop();
}

void UpgradeReport::touched(UpgradeSession* session)
{
    if (!m_touched.contains(session))
        m_touched << session;
    if (!m_save.isActive())
        m_save.start();
    if (!m_poll.isActive())
        m_poll.start();
}

void UpgradeReport::saveTouched()
{
    for (const UpgradeSession* session : qAsConst(m_touched))
        m_journal.save(*session, !session->isSettled() || session->hasWaitingSettings());
    m_touched.clear();
    emit changed();
}
