// SPDX-License-Identifier: MIT
// A box that has been ordered to change over, or to restart, until it is there again.
#include "upgrade/box_upgrade.h"

#include "common/box_protocol.h"
#include "upgrade/box_answer.h"
#include "upgrade/upgrade_judgement.h"

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;

constexpr int roundTicks = 2;
constexpr int shortestRoundMs = 250;
/// Rounds without an answer, and the time that they take at least, after which a box has really
/// been away: a few requests lost on a busy network are no restart.
constexpr int missedWhenAway = 3;
constexpr int shortestAbsenceTicks = 6;
/// How long a box that was away has to tell its new version; the longer where its absence was so
/// short that it may have been the network's.
constexpr int steadyTicks = 2;
constexpr int doubtTicks = 30;
constexpr int lookOutTicks = 30;

} // namespace

void BoxUpgrade::resume()
{
    m_package.version = row().expected;
    m_wasAway = row().wasAway;
    m_held = row().settings == Settings::Waiting;
    m_ordered = row().stage == Stage::Activated;
    row().settled = false;
    m_link.adopted();
    if (row().settings == Settings::Restored || row().settings == Settings::Unverified)
        row().aftermath = tr("设置写回后程序曾中断，设备可能尚未重启");
    if (m_ordered) {
        enter(Step::Away);
        watch();
    } else if (m_held) {
        enter(Step::Missing);
    } else {
        end();
    }
}

void BoxUpgrade::heardAt(const QString& ip)
{
    m_missed = m_unseen = 0;
    lookAt(ip);
}

/// That is no end of an absence: many answer ping long before anything else.
void BoxUpgrade::cameOnline(const QString& ip)
{
    // Whoever gives it up now would not hear of it again.
    m_missed = qMin(m_missed, missedWhenAway - 1);
    m_unseen = qMin(m_unseen, missedWhenAway - 1);
    lookAt(ip);
}

void BoxUpgrade::lookAt(const QString& ip)
{
    if (isWatching() || isLookingOut())
        m_candidates << ip;
    if (isLookingOut())
        awaitBox();
}

bool BoxUpgrade::isLookingOut() const
{
    return m_step == Step::Missing && !m_held && !m_handingOver &&
           row().settings == Settings::Waiting;
}

/// A box that answered ping all the time is not heard by anybody when it can be talked to again.
void BoxUpgrade::lookOut(qint64 now)
{
    if (!isLookingOut() || row().mac.isEmpty() || now < m_nextRound)
        return;
    m_nextRound = now + ticks(lookOutTicks);
    m_round.forget();
    const QStringList known = m_host.otherAddresses(row().mac, row().address) << row().address;
    for (const QString& ip : known) {
        if (BoxProtocol::isIpv4Address(ip))
            m_link.read(ip, BoxProtocol::MACAddress,
                        m_round.hear([this, ip](const QString& answer) {
                            if (BoxAnswer::isMac(answer, row().mac))
                                heardAt(ip);
                        }));
    }
}

bool BoxUpgrade::isWatching() const
{
    return m_step == Step::Away || m_step == Step::Restarting ||
           (m_step == Step::Activating && m_ordered);
}

void BoxUpgrade::watch()
{
    m_orderedAt = m_missedSince = m_clock.ms();
    m_missed = m_unseen = 0;
    m_askingVersion = false;
    m_changedAt = -1;
    m_round.forget();
    m_asked.clear();
    m_nextRound = m_clock.ms();
}

/// What time alone brings about while the box is watched.
void BoxUpgrade::watchTime(qint64 now)
{
    if (!isWatching())
        return;
    // One lost question is no absence: settings would wait for a box that is there all the time.
    if (m_unseen >= missedWhenAway && isOutOfTime()) {
        giveUpWaiting();
        return;
    }
    if (m_asked.isEmpty() && !m_askingVersion && now >= m_nextRound)
        askAround();
}

int BoxUpgrade::patience() const
{
    return m_step == Step::Restarting ? RestartTicks : AllowanceTicks;
}

bool BoxUpgrade::isOutOfTime() const
{
    return m_clock.ms() >= m_orderedAt + ticks(patience());
}

void BoxUpgrade::askAround()
{
    m_nextRound = m_clock.ms() + qMax<qint64>(shortestRoundMs, ticks(roundTicks));
    m_answered.clear();
    m_isUnclear = false;
    m_round.forget();
    QStringList known = m_host.otherAddresses(row().mac, row().address) << row().address;
    known += m_candidates.values();
    QSet<QString> addresses;
    for (const QString& ip : qAsConst(known)) {
        if (BoxProtocol::isIpv4Address(ip))
            addresses << ip;
    }
    m_asked = addresses;
    if (addresses.isEmpty())
        takeWhereabouts();
    for (const QString& ip : qAsConst(addresses))
        m_link.read(ip, BoxProtocol::MACAddress,
                    m_round.hear([this, ip](const QString& answer) { takeAnswer(ip, answer); }));
}

void BoxUpgrade::takeAnswer(const QString& ip, const QString& answer)
{
    // Of a box without a MAC address whoever answers has to do.
    if (row().mac.isEmpty() ? !answer.isEmpty() : BoxAnswer::isMac(answer, row().mac))
        m_answered << ip;
    else if (ip == row().address && !answer.isEmpty() && BoxAnswer::mac(answer).isEmpty())
        m_isUnclear = true;
    m_asked.remove(ip);
    if (m_asked.isEmpty())
        takeWhereabouts();
}

void BoxUpgrade::takeWhereabouts()
{
    if (m_answered.size() > 1)
        row().ambiguous = true;
    // Of two boxes with one MAC address only the place tells which: what the other one says must
    // not end the watch over this one, which may be at work on its package.
    if (row().ambiguous)
        m_answered =
            m_answered.contains(row().address) ? QStringList(row().address) : QStringList();
    // Who does not tell at its own address may be the box at work, and the other one its twin.
    if (m_isUnclear && m_ordered && !m_wasAway && !isOutOfTime() && !m_answered.isEmpty() &&
        !m_answered.contains(row().address)) {
        m_missed = m_unseen = 0;
        return;
    }
    if (m_answered.isEmpty()) {
        ++m_unseen;
        // Who answers with an error may be at work on his package.
        if (m_isUnclear)
            m_missed = 0;
        else
            noteAbsence();
        return;
    }
    m_missed = m_unseen = 0;
    QString ip = row().address;
    if (!m_answered.contains(ip)) {
        // It is elsewhere: an address passes on with a restart only.
        ip = m_answered.first();
        row().address = ip;
        m_wasAway = true;
        m_hasMoved = true;
        if (m_ordered && !m_refused)
            succeed();
        m_host.identified(ip, row().mac);
        m_host.changed(*this);
    }
    if (m_step == Step::Restarting) {
        // Where it may come back stays worth asking: it may have answered before it went.
        takeRestart();
        return;
    }
    m_candidates.clear();
    if (m_ordered) {
        askVersion();
    } else {
        writeBack();
    }
}

void BoxUpgrade::noteAbsence()
{
    const qint64 now = m_clock.ms();
    if (m_missed++ == 0)
        m_missedSince = now;
    // Of one that told its new version before, a short silence may be the network: it may have yet
    // to restart with it.
    const int shortest = m_changedAt < 0 ? shortestAbsenceTicks : SureAbsenceTicks;
    if (m_wasAway || m_missed < missedWhenAway || now - m_missedSince < ticks(shortest))
        return;
    m_wasAway = true;
    m_changedAt = -1;
    if (m_ordered && !m_refused)
        succeed();
}

void BoxUpgrade::askVersion()
{
    m_askingVersion = true;
    m_link.read(row().address, BoxProtocol::FirmVersion,
                m_round.hear([this](const QString& answer) { takeVersion(answer); }));
}

void BoxUpgrade::takeVersion(const QString& answer)
{
    m_askingVersion = false;
    const QString version = BoxAnswer::version(answer);
    const bool known = !version.isEmpty();
    if (known)
        m_host.versionTold(row().address, version);
    const bool changed = known && UpgradeJudgement::hasChangedOver(row(), version, m_wasAway);
    // Whatever it was away for, or told for a moment, it has not changed over.
    if (known && !changed) {
        m_changedAt = -1;
        m_wasAway = false;
    }
    if (changed && m_changedAt < 0)
        m_changedAt = m_clock.ms();
    // What it told before may have been too early.
    if (changed || (known && (isOutOfTime() || !row().versionAfter.isEmpty()))) {
        row().versionAfter = version;
        row().wasAway = m_wasAway;
        spendTime();
        m_host.changed(*this);
        if (row().isProved())
            succeed();
    }
    // To read is harmless, to write and to restart it is not: before it was really away it may
    // still be at work on its package, and with the old version it may have to begin with it yet.
    if (isOutOfTime() || (changed && isSteady()))
        changeOverEnded();
}

/// A box may tell the package's version before it restarts with it, and what passed for its restart
/// may have been the network.
bool BoxUpgrade::isSteady() const
{
    const bool isSure = m_hasMoved || m_changedAt - m_missedSince >= ticks(SureAbsenceTicks);
    return m_wasAway && m_clock.ms() >= m_changedAt + ticks(isSure ? steadyTicks : doubtTicks);
}

void BoxUpgrade::changeOverEnded()
{
    m_ordered = false;
    if (!m_succeeded)
        m_timedOut = true;
    writeBack();
}

void BoxUpgrade::giveUpWaiting()
{
    // What it told before it went for good was too early.
    if (m_ordered)
        row().versionAfter.clear();
    m_ordered = false;
    m_round.forget();
    if (m_step == Step::Restarting && row().settings != Settings::Waiting) {
        row().aftermath = tr("恢复设置后重启，未再回应");
        end();
        return;
    }
    if (row().settings == Settings::Waiting && row().ambiguous) {
        // Whichever of the two answers some day, nobody could tell whose they are.
        row().settings = Settings::Ambiguous;
        m_host.writeBackEnded(*this);
    }
    if (row().settings != Settings::Waiting) {
        end();
        return;
    }
    spendTime();
    row().settled = true;
    m_timedOut = !m_succeeded;
    enter(Step::Missing);
}
