// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_report.h"

#include "device/item.h"
#include "upgrade/interrupted_batch.h"
#include "upgrade/upgrade_watch.h"
#include "upgrade/write_back_permit.h"

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;

/// How long a box may stay away, from its activation or the end of the batch.
constexpr int patienceTicks = Item::UpgradeAllowance;
/// A box that was told to change over and neither went away nor changed may still be busy with it
/// for so long; then it has ignored the order.
constexpr int quietTicks = 60;
/// One request lost on a busy network does not mean that a box is down.
constexpr int missedWhenDown = 2;

bool sameMac(const QString& a, const QString& b)
{
    return !a.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
}

bool isBeforeActivation(const UpgradeRow& row)
{
    return row.stage == Stage::Preparing || row.stage == Stage::Uploading;
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

UpgradeReport::UpgradeReport(UpgradeWatch& watch, int tickMs)
    : QObject(nullptr), m_watch(watch), m_tickMs(tickMs)
{
    connect(&watch, &UpgradeWatch::due, this, &UpgradeReport::askAll);
    connect(&watch, &UpgradeWatch::missed, this, &UpgradeReport::noteMissed);
    connect(&watch, &UpgradeWatch::versionTold, this, &UpgradeReport::noteVersion);
    connect(&m_sessions, &UpgradeSessions::adopted, this, &UpgradeReport::adopt);
    connect(&m_sessions, &UpgradeSessions::changed, this, &UpgradeReport::changed);
}

UpgradeReport::~UpgradeReport() = default;

void UpgradeReport::loadInterrupted()
{
    m_sessions.load();
}

void UpgradeReport::begin(const QString& package, const QString& md5)
{
    m_latest = &m_sessions.add(package, md5);
}

void UpgradeReport::addBox(Item* item, bool keepSettings)
{
    UpgradeRow row;
    row.mac = item->macAddress();
    row.addressBefore = row.address = item->address();
    row.versionBefore = item->firmwareVersion().left(UpgradeJudgement::longestVersion);
    row.started = QDateTime::currentDateTime();
    row.settings = keepSettings ? Settings::NotSaved : Settings::NotKept;
    m_latest->rows << row;
    auto box = std::make_unique<Box>();
    box->session = m_latest;
    box->index = m_latest->rows.size() - 1;
    box->item = item;
    connect(item, &Item::upgradeChanged, this, [this, b = box.get()] { noteProgress(*b); });
    touch(*box);
    m_boxes.push_back(std::move(box));
}

/// The latest upgrade of a box is the one that its answers belong to.
UpgradeReport::Box* UpgradeReport::find(const QString& mac) const
{
    for (auto it = m_boxes.rbegin(); it != m_boxes.rend(); ++it) {
        if (sameMac((*it)->row().mac, mac))
            return it->get();
    }
    return nullptr;
}

bool UpgradeReport::ticksPassed(const QElapsedTimer& since, int ticks) const
{
    return since.isValid() && since.elapsed() > qint64(ticks) * m_tickMs;
}

UpgradeSigns UpgradeReport::signsOf(const Box& box) const
{
    UpgradeSigns signs;
    signs.orderOpen = box.item && box.item->isUpgrading() && !box.item->hasSucceeded();
    signs.wasDown = box.wasDown;
    signs.quiet = ticksPassed(box.sinceOrder, quietTicks);
    signs.restarting = box.restarting;
    signs.batchEnded = box.sinceEnd.isValid();
    signs.outOfTime = ticksPassed(box.sinceEnd, patienceTicks);
    signs.reported = box.reported;
    return signs;
}

void UpgradeReport::noteProgress(Box& box)
{
    UpgradeRow& row = box.row();
    // An item that is upgraded once more reports to its latest row only.
    if (!box.item || box.sinceEnd.isValid())
        return;
    if (row.mac.isEmpty())
        row.mac = box.item->macAddress();
    if (!row.mac.isEmpty() && find(row.mac) != &box)
        return;
    if (box.item->isUploaded()) {
        if (row.stage != Stage::Activated)
            box.sinceOrder.start();
        row.stage = Stage::Activated;
    } else {
        row.stage = Stage::Uploading;
    }
    row.note = lastTip(box.item);
    touch(box);
}

void UpgradeReport::setSaved(const QString& mac, const QVariantMap& values, bool whole)
{
    const Box* box = find(mac);
    if (!box)
        return;
    box->row().saved = values;
    box->row().settings = whole ? Settings::Waiting : Settings::NotSaved;
    touch(*box);
}

void UpgradeReport::setDhcpForced(const QString& mac)
{
    if (const Box* box = find(mac)) {
        box->row().dhcpForced = true;
        touch(*box);
    }
}

void UpgradeReport::batchEnded()
{
    for (const auto& box : m_boxes) {
        if (box->sinceEnd.isValid())
            continue;
        box->sinceEnd.start();
        UpgradeJudgement::endUpload(box->row(), lastTip(box->item), QDateTime::currentDateTime());
        judge(*box);
        touch(*box);
    }
}

bool UpgradeReport::mayWriteBack(const QString& mac, const QString& ip) const
{
    const Box* box = find(mac);
    return !box || ::mayWriteBack(box->row(), signsOf(*box), ip);
}

void UpgradeReport::setRestarting(const QString& mac)
{
    if (Box* box = find(mac)) {
        box->restarting = true;
        box->wasDown = false;
        box->missed = 0;
        box->sinceOrder.start();
    }
}

void UpgradeReport::setRestored(const QString& mac, Settings outcome, const QStringList& failed)
{
    const Box* box = find(mac);
    if (!box)
        return;
    UpgradeRow& row = box->row();
    // Of settings that were never read whole only the address was put back.
    if (row.settings != Settings::NotSaved)
        row.settings = outcome;
    row.failedSettings = failed;
    row.saved.clear();
    judge(*box);
    touch(*box);
}

void UpgradeReport::dropSettings(const QStringList& macs)
{
    for (const QString& mac : macs)
        setRestored(mac, Settings::Dropped, {});
}

void UpgradeReport::macHeard(const QString& ip, const QString& mac)
{
    Box* box = find(mac);
    if (!box) {
        emit seen(ip, mac);
        return;
    }
    UpgradeRow& row = box->row();
    if (isBeforeActivation(row))
        return;
    box->missed = 0;
    if (row.address != ip) {
        row.address = ip;
        touch(*box);
    }
    m_watch.askVersion(row.mac, ip);
}

void UpgradeReport::noteMissed(const QString& mac)
{
    Box* box = find(mac);
    if (box && ++box->missed >= missedWhenDown)
        box->wasDown = true;
}

void UpgradeReport::noteVersion(const QString& ip, const QString& mac, const QString& version)
{
    Box* box = find(mac);
    // It may have moved on meanwhile; then it is asked there.
    if (!box || ip != box->row().address)
        return;
    // One that fell silent again is not ready for anything; it is asked once more.
    if (version.isEmpty())
        return;
    UpgradeRow& row = box->row();
    box->reported = version.left(UpgradeJudgement::longestVersion);
    const QString before = row.versionAfter;
    UpgradeJudgement::noteVersion(row, signsOf(*box));
    judge(*box);
    if (row.settled || row.versionAfter != before)
        touch(*box);
    emit seen(ip, row.mac);
}

void UpgradeReport::judge(const Box& box)
{
    UpgradeJudgement::judge(box.row(), signsOf(box), QDateTime::currentDateTime());
}

void UpgradeReport::askAll()
{
    bool open = false;
    for (const auto& box : m_boxes) {
        const UpgradeRow& row = box->row();
        if (row.settled)
            continue;
        open = true;
        if (isBeforeActivation(row))
            continue;
        judge(*box);
        if (row.settled)
            touch(*box);
        else if (!row.mac.isEmpty() && find(row.mac) == box.get())
            m_watch.ask(row.mac, row.address);
    }
    if (!open)
        m_watch.rest();
}

void UpgradeReport::adopt(const QVector<UpgradeSession*>& sessions)
{
    QMap<QString, QVariantMap> waiting;
    QDateTime when;
    int underWay = 0;
    for (UpgradeSession* session : sessions) {
        const InterruptedBatch found = markInterrupted(*session, QDateTime::currentDateTime());
        underWay += found.underWay;
        for (auto it = found.settings.cbegin(); it != found.settings.cend(); ++it)
            waiting.insert(it.key(), it.value());
        if (!found.settings.isEmpty())
            when = session->started;
        for (int index = 0; index < session->rows.size(); ++index) {
            auto box = std::make_unique<Box>();
            box->session = session;
            box->index = index;
            box->sinceOrder.start();
            box->sinceEnd.start();
            touch(*box);
            // Whatever this run has begun meanwhile is later.
            m_boxes.insert(m_boxes.begin(), std::move(box));
        }
    }
    if (underWay > 0)
        emit interruptedFound(underWay);
    if (!waiting.isEmpty())
        emit settingsFound(waiting, when);
}

void UpgradeReport::touch(const Box& box)
{
    m_sessions.touch(*box.session);
    m_watch.wake();
}
