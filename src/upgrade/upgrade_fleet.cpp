// SPDX-License-Identifier: MIT
#include "upgrade/upgrade_fleet.h"

#include "common/box_protocol.h"
#include "upgrade/interrupted_batch.h"
#include "upgrade/kept_settings.h"

#include <QFileInfo>

#include <algorithm>

namespace
{

using Settings = UpgradeRow::Settings;

/// Some tell their MAC address only once they have started: until then the place counts.
bool isSameBox(const UpgradeRow& row, const QString& mac, const QString& ip)
{
    if (row.mac.isEmpty() || mac.isEmpty())
        return row.address == ip;
    return BoxProtocol::isSameMac(row.mac, mac);
}

} // namespace

UpgradeFleet::UpgradeFleet(BoxLink& link, const UpgradeClock& clock, UpgradeStore& store,
                           KeptSettings& kept, Addresses addresses)
    : QObject(nullptr)
    , m_link(link)
    , m_clock(clock)
    , m_kept(kept)
    , m_addresses(std::move(addresses))
    , m_sessions(store, clock)
{
}

UpgradeFleet::~UpgradeFleet() = default;

void UpgradeFleet::begin(const FirmwarePackage& package)
{
    m_package = package;
    m_latest = &m_sessions.add(QFileInfo(package.path).fileName(), package.md5);
}

BoxUpgrade& UpgradeFleet::add(const QString& ip, const QString& mac, bool keepSettings)
{
    BoxUpgrade& box = addToBatch(ip, mac, keepSettings);
    box.start(m_package, keepSettings);
    return box;
}

void UpgradeFleet::leaveOut(const QString& ip, const QString& mac, const QString& reason)
{
    // Nothing has been read for this upgrade.
    addToBatch(ip, mac, false).leaveOut(reason);
}

BoxUpgrade& UpgradeFleet::addToBatch(const QString& ip, const QString& mac, bool keepSettings)
{
    UpgradeRow row;
    row.mac = BoxProtocol::isMacAddress(mac) ? mac : QString();
    row.addressBefore = row.address = ip;
    row.started = m_clock.date();
    row.settings = keepSettings ? Settings::NotSaved : Settings::NotKept;
    return addBox(*m_latest, row);
}

BoxUpgrade& UpgradeFleet::addBox(UpgradeSession& session, const UpgradeRow& row)
{
    session.rows << row;
    m_boxes.push_back(
        std::make_unique<BoxUpgrade>(session, session.rows.size() - 1, m_link, m_clock, *this));
    return *m_boxes.back();
}

void UpgradeFleet::endBatch()
{
    for (const auto& box : m_boxes) {
        if (!box->isInBatch())
            continue;
        box->session().ended = true;
        m_sessions.touch(box->session());
        box->endBatch();
    }
}

void UpgradeFleet::tick()
{
    // By index: one that ends may bring about another.
    for (size_t n = 0; n < m_boxes.size(); ++n)
        m_boxes[n]->tick();
    if (m_sessions.tick())
        emit reportChanged();
}

void UpgradeFleet::countDown()
{
    for (const auto& box : m_boxes)
        box->countDown();
}

void UpgradeFleet::heard(const QString& ip, const QString& mac)
{
    if (!BoxProtocol::isMacAddress(mac) || !BoxProtocol::isIpv4Address(ip))
        return;
    emit boxIdentified(ip, mac);
    if (BoxUpgrade* box = find(mac, ip)) {
        box->heardAt(ip);
        return;
    }
    if (!m_kept.isWaiting(mac))
        return;
    // Settings that somebody has put into the window's list.
    UpgradeRow row;
    row.mac = mac;
    row.addressBefore = row.address = ip;
    row.started = m_clock.date();
    row.stage = UpgradeRow::Stage::UploadFailed;
    row.settings = Settings::Waiting;
    row.saved = m_kept.values(mac);
    addBox(m_sessions.addUnlisted(), row).awaitBox();
}

/// It is asked who it is before anything else.
void UpgradeFleet::cameOnline(const QString& ip)
{
    for (const auto& box : m_boxes) {
        if (box->row().address == ip || m_addresses(box->row().mac).contains(ip))
            box->cameOnline(ip);
    }
}

BoxUpgrade* UpgradeFleet::find(const QString& mac, const QString& ip) const
{
    BoxUpgrade* waiting = nullptr;
    for (auto it = m_boxes.rbegin(); it != m_boxes.rend(); ++it) {
        BoxUpgrade& box = **it;
        if (!BoxProtocol::isSameMac(box.row().mac, mac))
            continue;
        if (box.isOwner() && (box.isIdentified() || box.row().address == ip))
            return &box;
        if (!waiting && box.row().settings == Settings::Waiting)
            waiting = &box;
    }
    return waiting;
}

void UpgradeFleet::adopt(const QVector<UpgradeSession>& found)
{
    QMap<QString, QVariantMap> waiting;
    QDateTime when;
    int underWay = 0;
    const QVector<UpgradeSession*> sessions = m_sessions.adopt(found);
    std::vector<std::unique_ptr<BoxUpgrade>> boxes;
    // The newest first: of settings that wait twice for a box, the later ones count.
    for (auto it = sessions.rbegin(); it != sessions.rend(); ++it) {
        UpgradeSession& session = **it;
        underWay += markInterrupted(session, m_clock.date());
        m_sessions.touch(session);
        for (int index = session.rows.size() - 1; index >= 0; --index) {
            UpgradeRow& row = session.rows[index];
            // As it was kept for one box, however its MAC address is spelled.
            const auto isIt = [&row](const QString& mac) {
                return BoxProtocol::isSameMac(mac, row.mac);
            };
            const QStringList macs = waiting.keys();
            const bool isWaiting = std::any_of(macs.begin(), macs.end(), isIt);
            const bool later = isWaiting || find(row.mac);
            if (row.settings == Settings::Waiting && later)
                row.settings = Settings::HandedOver;
            // One begun later has the box: this one had let go of it, whatever the disk knows.
            if (row.settings != Settings::Waiting && isWaiting)
                row.settled = true;
            if (row.settings == Settings::Waiting) {
                waiting.insert(row.mac, row.saved);
                when = qMax(when, session.started);
            } else if (row.settled) {
                continue;
            }
            boxes.push_back(std::make_unique<BoxUpgrade>(session, index, m_link, m_clock, *this));
        }
    }
    // Whatever this run has begun meanwhile is later.
    std::reverse(boxes.begin(), boxes.end());
    const size_t count = boxes.size();
    m_boxes.insert(m_boxes.begin(), std::make_move_iterator(boxes.begin()),
                   std::make_move_iterator(boxes.end()));
    for (size_t n = 0; n < count; ++n)
        m_boxes[n]->resume();
    if (underWay > 0)
        emit interruptedFound(underWay);
    if (!waiting.isEmpty())
        emit settingsFound(waiting, when);
}

void UpgradeFleet::release(const QStringList& macs)
{
    for (size_t n = 0; n < m_boxes.size(); ++n) {
        BoxUpgrade& box = *m_boxes[n];
        if (box.isHeld() && macs.contains(box.row().mac, Qt::CaseInsensitive))
            box.release();
    }
}

void UpgradeFleet::dropSettings(const QStringList& macs)
{
    for (size_t n = 0; n < m_boxes.size(); ++n) {
        if (macs.contains(m_boxes[n]->row().mac, Qt::CaseInsensitive))
            m_boxes[n]->dropSettings();
    }
    for (const QString& mac : macs)
        m_kept.removeWaiting(mac);
}

UpgradeCounts UpgradeFleet::counts() const
{
    UpgradeCounts counts;
    for (const auto& box : m_boxes) {
        if (!box->isInBatch())
            continue;
        ++counts.upgrading;
        counts.successful += box->hasSucceeded() ? 1 : 0;
        counts.timedOut += box->hasTimedOut() ? 1 : 0;
    }
    return counts;
}

bool UpgradeFleet::owns(const QString& mac, const QString& ip) const
{
    return std::any_of(m_boxes.begin(), m_boxes.end(), [&](const auto& box) {
        return box->isOwner() && isSameBox(box->row(), mac, ip);
    });
}

int UpgradeFleet::waitingCount() const
{
    const auto isWaiting = [](const auto& box) {
        // Written they are not in effect: the restart is still to be ordered.
        return box->row().settings == Settings::Waiting ||
               box->step() == BoxUpgrade::Step::WritingBack;
    };
    return int(std::count_if(m_boxes.begin(), m_boxes.end(), isWaiting)) - m_takenOver.size();
}

bool UpgradeFleet::isIdle() const
{
    return waitingCount() == 0 && std::none_of(m_boxes.begin(), m_boxes.end(),
                                               [](const auto& box) { return box->isOwner(); });
}

void UpgradeFleet::keep(BoxUpgrade& box, std::function<void(bool kept)> then)
{
    m_sessions.keep(box.session(), [this, &box, then = std::move(then)](bool kept) {
        if (kept)
            endTakenOver(box);
        then(kept);
    });
}

void UpgradeFleet::endTakenOver(const BoxUpgrade& box)
{
    if (BoxUpgrade* before = m_takenOver.take(&box))
        before->endHandedOver();
}

void UpgradeFleet::changed(BoxUpgrade& box)
{
    m_sessions.touch(box.session());
    if (box.row().settings != Settings::Waiting && m_takenOver.contains(&box) &&
        !m_ending.contains(&box)) {
        // What became of them is safe before the upgrade before is closed: a disk that has room
        // again gets this one first.
        m_ending.insert(&box);
        const auto close = [this, &box] {
            m_ending.remove(&box);
            endTakenOver(box);
        };
        m_sessions.keep(box.session(), [this, &box, close](bool kept) {
            if (kept)
                close();
            else
                m_sessions.whenKept(box.session(), close);
        });
    }
    mirrorWaiting(box);
    emit boxChanged(&box);
}

void UpgradeFleet::tell(BoxUpgrade& box, const QString& line)
{
    emit told(&box, line);
}

void UpgradeFleet::identified(const QString& ip, const QString& mac)
{
    emit boxIdentified(ip, mac);
}

void UpgradeFleet::versionTold(const QString& ip, const QString& version)
{
    emit versionHeard(ip, version);
}

QStringList UpgradeFleet::otherAddresses(const QString& mac, const QString& ip) const
{
    QStringList addresses = mac.isEmpty() ? QStringList() : m_addresses(mac);
    addresses.removeAll(ip);
    return addresses;
}

BoxUpgrade* UpgradeFleet::ownerBeside(const BoxUpgrade& box) const
{
    const auto found = std::find_if(m_boxes.begin(), m_boxes.end(), [&box](const auto& other) {
        return other.get() != &box && other->isOwner() && other->isIdentified() &&
               isSameBox(other->row(), box.row().mac, box.row().address);
    });
    return found == m_boxes.end() ? nullptr : found->get();
}

bool UpgradeFleet::takeOver(BoxUpgrade& box)
{
    for (auto it = m_boxes.rbegin(); it != m_boxes.rend(); ++it) {
        BoxUpgrade& other = **it;
        if (&other != &box && !other.isOwner() && !other.isHandingOver() &&
            other.row().settings == Settings::Waiting &&
            BoxProtocol::isSameMac(other.row().mac, box.row().mac)) {
            other.handOver(box.row());
            m_takenOver.insert(&box, &other);
            keep(box, [](bool) {});
            return true;
        }
    }
    return false;
}

void UpgradeFleet::settingsRead(BoxUpgrade& box, const QVariantMap& values)
{
    if (!m_kept.isWaiting(box.row().mac))
        m_kept.setValues(box.row().mac, values);
}

void UpgradeFleet::writeBackBegins(BoxUpgrade& box, const QVariantMap& values)
{
    m_kept.removeWaiting(box.row().mac);
    emit writingBack(box.row().address, values);
}

void UpgradeFleet::lastTryFollows(BoxUpgrade& box)
{
    m_kept.addLastTry(box.row().mac);
}

void UpgradeFleet::writeBackEnded(BoxUpgrade& box)
{
    const UpgradeRow& row = box.row();
    m_kept.takeLastTry(row.mac);
    m_kept.removeWaiting(row.mac);
    if (row.settings == Settings::Restored || row.settings == Settings::Unverified)
        emit restored(row.address, row.settings == Settings::Restored);
    else if (row.settings == Settings::SomeFailed)
        emit restoreFailed(row.address);
}

/// The window's list says whose settings wait, too.
void UpgradeFleet::mirrorWaiting(const BoxUpgrade& box)
{
    const UpgradeRow& row = box.row();
    if (row.mac.isEmpty() || box.isHeld() || box.step() == BoxUpgrade::Step::WritingBack)
        return;
    if (row.settings == Settings::Waiting && !m_kept.isWaiting(row.mac)) {
        m_kept.setValues(row.mac, row.saved);
        m_kept.addWaiting(row.mac);
    }
}
