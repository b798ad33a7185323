// SPDX-License-Identifier: MIT
#include "tests/upgrade/upgrade_world.h"

namespace
{

using Settings = UpgradeRow::Settings;

/// One does not tell its version.
const QStringList packages{"/KORA_1.2.0.623.dat", "/KORA_1.2.0.700.dat", "/KORA.dat"};
const QString ownAddress = "eParam_IPAddress";
constexpr qint64 longest = 6000000;
/// Telling the new version before the restart with it: within what the engine waits after a
/// silence.
constexpr int longestEarlyMs = 25000;

/// In the order of their batches, as the names of files tell it.
QVector<UpgradeSession> sessionsOf(const QMap<QString, UpgradeSession>& journals)
{
    QVector<UpgradeSession> sessions;
    for (const UpgradeSession& session : journals)
        sessions << session;
    return sessions;
}

} // namespace

UpgradeWorld::UpgradeWorld(quint32 seed) : m_story(seed)
{
    m_lan.setAbsentMs(m_story.chance(50) ? 5 : sim::ModelLan::WriteLimitMs);
    const int boxes = 1 + m_story.draw(5);
    for (int n = 0; n < boxes; ++n)
        addBox(n);
    m_lan.setActed(
        [this](const sim::ModelBox& box, const QString& act) { checkJournals(box, act); });
    m_lan.setAppeared([this](const sim::ModelBox& box) {
        // The search finds it, some time later.
        m_time.in(2000 + m_story.draw(9000), [this, &box] {
            if (!box.isOn)
                return;
            // Who stands in the list still is not asked who he is.
            if (m_list.value(box.address) == box.mac) {
                if (m_fleet)
                    m_fleet->cameOnline(box.address);
                return;
            }
            m_list[box.address] = box.mac;
            if (m_fleet)
                m_fleet->heard(box.address, box.mac);
        });
    });
}

void UpgradeWorld::trace()
{
    m_lan.setTrace(
        [this](const QString& line) { qInfo().noquote() << double(m_time.now()) / 1000 << line; });
}

void UpgradeWorld::addBox(int n)
{
    const bool twin = n > 0 && m_story.chance(5);
    const QString mac = twin ? m_lan.boxes().front()->mac
                             : QString("02:4B:4F:00:00:%1").arg(n + 1, 2, 16, QChar('0'));
    sim::ModelBox& box = m_lan.add(mac, m_lan.freshAddress());
    box.settings["eParam_NDIName"] = QString("name of %1, %2").arg(mac).arg(n);
    box.settings["eParam_NTPServer"] = QString("ntp of %1, %2").arg(mac).arg(n);
    if (m_story.chance(10))
        box.settings["eParam_FirmVersion"] =
            UpgradeJudgement::versionIn(packages.at(m_story.draw(2)));
    box.settings["eParam_DHCP"] = m_story.chance(50) ? "0" : "1";
    box.settings[ownAddress] = box.address;
    box.habits = m_story.habits();
    box.deniesUntil = m_story.chance(50) ? box.habits.denyMs : 0;
    m_list[box.address] = box.mac;
    m_checker.addBox(mac, box.settings, box.habits);
}

void UpgradeWorld::plan(const QVector<UpgradeStory::Event>& events)
{
    for (const UpgradeStory::Event& event : events) {
        m_lastEvent = qMax(m_lastEvent, event.at + event.lasts);
        m_time.in(event.at, [this, event] { happen(event); });
    }
}

void UpgradeWorld::happen(const UpgradeStory::Event& event)
{
    using Event = UpgradeStory::Event;
    sim::ModelBox& box = boxAt(event.box);
    switch (event.what) {
    case Event::Deaf:
        // Of one that tells its new version long before it restarts nothing tells it from a
        // restart.
        if (box.habits.earlyMs <= longestEarlyMs)
            m_lan.setDeaf(box, event.lasts);
        break;
    case Event::PowerCut:
        m_lan.powerCycle(box, event.lasts);
        break;
    case Event::Swap:
        swap(event);
        break;
    case Event::Elsewhere:
        box.settings["eParam_FirmVersion"] = UpgradeStory::versionFromElsewhere();
        box.isInOtherHands = true;
        m_lan.powerCycle(box, event.lasts);
        break;
    case Event::Written:
        box.settings[event.name] = box.writtenElsewhere[event.name] =
            event.value.isEmpty() ? m_lan.freshAddress() : event.value;
        m_lan.note("somebody else writes " + event.name + " of " + box.mac);
        break;
    case Event::FullDisk:
        m_store.isFull = true;
        m_time.in(event.lasts, [this] { m_store.isFull = false; });
        break;
    case Event::EndProgram:
        endProgram();
        m_time.in(event.lasts, [this] { startProgram(); });
        break;
    case Event::Batch:
        beginBatch(event.keep);
        break;
    }
}

void UpgradeWorld::swap(const UpgradeStory::Event& event)
{
    sim::ModelBox& a = boxAt(event.box);
    sim::ModelBox& b = boxAt((event.box + 1) % int(m_lan.boxes().size()));
    const QString address = a.address;
    m_lan.powerCycle(a, event.lasts, b.address);
    m_lan.powerCycle(b, 6000 + m_story.draw(6000), address);
}

/// One of them may never have been there when the other was.
void UpgradeWorld::planTwins()
{
    const auto& boxes = m_lan.boxes();
    for (const auto& box : boxes) {
        if (boxes.size() > 1 && box->mac == boxes.front()->mac && m_story.chance(20))
            m_lan.powerCycle(*box, 5000 + m_story.draw(100000));
    }
}

void UpgradeWorld::startProgram()
{
    if (m_fleet)
        return;
    ++m_store.program;
    m_kept = std::make_unique<ModelKept>();
    m_fleet = std::make_unique<UpgradeFleet>(
        m_link, m_clock, m_store, *m_kept, [this](const QString& mac) { return m_list.keys(mac); });
    QObject::connect(m_fleet.get(), &UpgradeFleet::settingsFound, m_fleet.get(),
                     [this](const QMap<QString, QVariantMap>& found, const QDateTime&) {
                         const QStringList macs = found.keys();
                         const bool wanted = m_story.chance(85);
                         const int when = m_story.draw(m_story.chance(30) ? 300000 : 20000);
                         m_lastEvent = qMax(m_lastEvent, m_time.now() + when);
                         m_time.in(when, [this, macs, wanted, run = m_store.program] {
                             if (!m_fleet || run != m_store.program)
                                 return;
                             if (wanted)
                                 m_fleet->release(macs);
                             else
                                 m_fleet->dropSettings(macs);
                         });
                     });
    QObject::connect(m_fleet.get(), &UpgradeFleet::boxIdentified, m_fleet.get(), [this] {
        if (!m_story.chance(m_store.delay > 2000 ? 8 : 1))
            return;
        const int when = m_story.draw(4000 + 2 * m_store.delay);
        m_lastEvent = qMax(m_lastEvent, m_time.now() + when + 5000);
        m_time.in(when, [this] {
            endProgram();
            m_time.in(3000, [this] { startProgram(); });
        });
    });
    QObject::connect(m_fleet.get(), &UpgradeFleet::restored, m_fleet.get(),
                     [this](const QString& ip, bool verified) {
                         for (const auto& box : m_lan.boxes())
                             if (verified && box->isOn && box->address == ip &&
                                 !(box->untold - QSet<QString>{box->habits.missing}).isEmpty())
                                 m_checker.complain(box->mac, "restored, but not read again");
                     });
    m_lan.note("the program starts");
    QObject::connect(m_fleet.get(), &UpgradeFleet::told, m_fleet.get(),
                     [this](BoxUpgrade* box, const QString& line) {
                         m_lan.note(box->row().mac + " tells: " + line);
                     });
    QObject::connect(m_fleet.get(), &UpgradeFleet::boxChanged, m_fleet.get(),
                     [this](BoxUpgrade* box) { stepped(*box); });
    m_fleet->adopt(sessionsOf(m_store.journals));
    const int soon = m_story.draw(20000);
    if (m_store.program > 1 && m_story.chance(25))
        m_time.in(soon, [this] { beginBatch(m_story.chance(60)); });
    m_lastEvent = qMax(m_lastEvent, m_time.now() + soon);
}

/// Killed: nothing more is saved. Sometimes closed instead.
void UpgradeWorld::endProgram()
{
    const bool isKilled = m_fleet && m_story.chance(70);
    if (isKilled)
        ++m_store.program;
    m_fleet.reset();
    // One that is killed has no last word either.
    if (isKilled)
        ++m_store.program;
    m_steps.clear();
    m_lan.note("the program ends");
}

/// Each step has its limit. While settings are read or saved, another box may take
/// the address at once.
void UpgradeWorld::stepped(const BoxUpgrade& box)
{
    using Step = BoxUpgrade::Step;
    auto& [step, since] = m_steps[&box];
    if (step == box.step())
        return;
    const int most = step == Step::Restarting ? 400 : step <= Step::ReadingSettings ? 140 : 100000;
    if (m_time.now() - since > most * 1000 && since > 0)
        m_checker.complain(box.row().mac, QString("step %1 took too long").arg(int(step)));
    step = box.step();
    since = m_time.now();
    const bool isSaving = step == Step::SwitchingDhcp || step == Step::Activating;
    if (step == Step::ReadingSettings ? m_story.chance(4)
                                      : isSaving && m_store.delay > 2000 && m_story.chance(10))
        m_time.in(m_story.draw(isSaving ? 2000 : 800),
                  [this, &box, step = step] { swapNow(&box, step); });
}

void UpgradeWorld::swapNow(const BoxUpgrade* upgrade, BoxUpgrade::Step step)
{
    if (m_hasSwapped || m_steps.value(upgrade).first != step)
        return;
    sim::ModelBox* one = m_lan.at(upgrade->row().address);
    sim::ModelBox& other = boxAt(m_story.draw(int(m_lan.boxes().size())));
    for (auto it = m_steps.cbegin(); it != m_steps.cend(); ++it)
        if (it.key()->row().mac == other.mac && it.key()->isOwner() &&
            it.key()->step() > BoxUpgrade::Step::ReadingSettings)
            return;
    if (!one || one->mac != upgrade->row().mac)
        return;
    m_hasSwapped = true;
    m_lan.swapAddresses(*one, other);
}

void UpgradeWorld::beginBatch(bool keep)
{
    if (!m_fleet)
        return;
    bool begun = false;
    const QString package = packages.at(m_story.draw(packages.size()));
    for (auto it = m_list.cbegin(); it != m_list.cend(); ++it) {
        // Its row may not have been told yet who it is.
        const QString known = m_story.chance(5) ? QString() : it.value();
        if (m_fleet->owns(known) || !m_story.chance(90))
            continue;
        if (!begun)
            m_lan.note(keep ? "batch that keeps" : "batch"),
                m_fleet->begin({package, "digest", UpgradeJudgement::versionIn(package)});
        begun = true;
        m_fleet->add(it.key(), known, keep);
        ++m_lives;
    }
}

void UpgradeWorld::second()
{
    if (!m_fleet)
        return;
    m_fleet->tick();
    m_fleet->countDown();
    if (m_fleet->counts().upgrading > 0 && m_fleet->counts().allEnded())
        m_fleet->endBatch();
}

bool UpgradeWorld::isQuiet() const
{
    if (!m_fleet || m_time.now() < m_lastEvent + 2000)
        return false;
    const auto sessions = m_fleet->sessions();
    return std::all_of(sessions.begin(), sessions.end(),
                       [](const UpgradeSession* session) { return session->isSettled(); });
}

QStringList UpgradeWorld::run()
{
    m_isDetailed = m_story.chance(10);
    m_store.delay = m_story.chance(5) ? 2500 : m_story.chance(3) ? 15000 : 5;
    const int loss = m_story.chance(10) ? 1 + m_story.draw(6) : 0;
    m_lan.setLoss(loss);
    startProgram();
    plan(m_story.troubles(int(m_lan.boxes().size())));
    plan(m_story.operation());
    planTwins();
    beginBatch(m_story.chance(75));
    // Quiet for so long that nobody will be found any more, and everything is saved.
    for (int quiet = 0; quiet < 40 + loss * 20 + m_store.delay / 300 && m_time.now() < longest;
         quiet = isQuiet() ? quiet + 1 : 0) {
        // What is saved when matters: more often than once a second, as in the window, now and
        // then.
        for (int part = 0; m_isDetailed && part < 4; ++part) {
            m_time.runUntil(m_time.now() + 200);
            if (m_fleet)
                m_fleet->tick();
        }
        m_time.runUntil(m_time.now() + (m_isDetailed ? 200 : 1000));
        second();
    }
    return check();
}

void UpgradeWorld::checkJournals(const sim::ModelBox& box, const QString& act)
{
    bool isHere = false;
    bool isActivated = false;
    bool isRestoring = false;
    bool isWaiting = false;
    const bool isUpload = act == "upload";
    // A package without its order does nothing, but belongs to a box that is to be upgraded.
    if (isUpload && m_fleet)
        for (const UpgradeSession* session : m_fleet->sessions())
            for (const UpgradeRow& row : session->rows)
                isHere |= !row.settled && (row.mac.isEmpty() || row.mac == box.mac);
    for (const UpgradeSession& session : qAsConst(m_store.journals)) {
        for (const UpgradeRow& row : session.rows) {
            if (row.mac.isEmpty() ? row.address != box.address : row.mac != box.mac)
                continue;
            isActivated |= row.stage == UpgradeRow::Stage::Activated && !row.settled;
            isWaiting |= row.settings == Settings::Waiting && !row.saved.isEmpty();
            isRestoring |= row.lastTry || row.settings == Settings::Restored ||
                           row.settings == Settings::Unverified;
        }
    }
    if (act == "restart")
        // One that is not on disk loses nothing: the settings wait there still.
        isWaiting = isRestoring || m_store.wasFull;
    if (isUpload ? !isHere : act == "activate" ? !isActivated : !isWaiting)
        m_checker.complain(box.mac, act + ", and nothing on disk tells why");
}

QStringList UpgradeWorld::check()
{
    const qint64 passed = m_clock.date().toMSecsSinceEpoch() - m_time.now();
    for (const UpgradeSession& session : qAsConst(m_store.reports))
        for (const UpgradeRow& row : session.rows)
            m_lan.note(UpgradeText::cells(session, row, session.started).join(" | "));
    for (const UpgradeSession& session : qAsConst(m_store.reports))
        m_checker.addReport(session.baseName(), UpgradeChecker::told(session, passed),
                            m_store.journals.contains(session.baseName()));
    QVector<UpgradeChecker::Truth> boxes;
    for (const auto& box : m_lan.boxes())
        boxes << UpgradeChecker::Truth{box->mac,         box->address,          box->isOn,
                                       box->unapplied,   box->settings,         box->violations,
                                       box->changes,     box->writtenElsewhere, box->isInOtherHands,
                                       box->writtenApart};
    if (m_time.now() >= longest)
        m_checker.complain("world", "a story has no end");
    return m_checker.judge(boxes);
}

QMap<QString, int> UpgradeWorld::endings() const
{
    QMap<QString, int> endings;
    for (const UpgradeSession& session : m_store.reports)
        for (const UpgradeRow& row : session.rows)
            ++endings[UpgradeText::cells(session, row, session.started).mid(5, 2).join('|')];
    return endings;
}
