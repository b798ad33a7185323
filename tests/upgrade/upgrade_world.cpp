// SPDX-License-Identifier: MIT
#include "tests/upgrade/upgrade_world.h"

namespace
{

using Settings = UpgradeRow::Settings;
using Verdict = UpgradeRow::Verdict;
using Habits = sim::ModelBoxHabits;

const QString packageVersion = "1.2.0.623";
const QString ownAddress = "eParam_IPAddress";
constexpr qint64 longest = 6000000;

const QStringList& parameters()
{
    static const QStringList names = BoxProtocol::configurationParameters();
    return names;
}

/// In the order of their batches, as the names of files tell it.
QVector<UpgradeSession> sessionsOf(const QMap<QString, UpgradeSession>& journals)
{
    QVector<UpgradeSession> sessions;
    for (const UpgradeSession& session : journals)
        sessions << session;
    return sessions;
}

} // namespace

UpgradeWorld::UpgradeWorld(quint32 seed) : m_random(seed)
{
    m_lan.setAbsentMs(chance(50) ? 5 : sim::ModelLan::WriteLimitMs);
    const int boxes = 1 + draw(5);
    for (int n = 0; n < boxes; ++n)
        addBox(n);
    m_lan.setAppeared([this](const sim::ModelBox& box) {
        // The search finds it, some time later.
        m_time.in(2000 + draw(9000), [this, &box] {
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
    const bool twin = n > 0 && chance(2);
    const QString mac = twin ? m_lan.boxes().front()->mac
                             : QString("02:4B:4F:00:00:%1").arg(n + 1, 2, 16, QChar('0'));
    if (twin)
        m_twins << mac;
    sim::ModelBox& box = m_lan.add(mac, m_lan.freshAddress());
    box.settings["eParam_NDIName"] = "name of " + mac;
    box.settings["eParam_NTPServer"] = "ntp of " + mac;
    box.settings["eParam_DHCP"] = chance(50) ? "0" : "1";
    box.settings[ownAddress] = box.address;
    drawHabits(box.habits);
    m_list[box.address] = box.mac;
    m_original[mac] = box.settings;
}

void UpgradeWorld::drawHabits(Habits& habits)
{
    habits.readMs = chance(10) ? 1500 : 1 + draw(60);
    habits.writeMs = chance(5) ? 2500 : 1 + draw(80);
    habits.uploadMs = 1000 + draw(30000);
    habits.uploadFailures = chance(15) ? draw(4) : 0;
    habits.takesUpload = !chance(5);
    habits.awayMs = 6000 + draw(30000);
    habits.changeMs = chance(15) ? draw(400000) : draw(5000);
    habits.movesOnRestart = chance(20);
    if (chance(20))
        habits.change = Habits::Change(draw(6));
    if (chance(20))
        habits.answer = Habits::Answer(draw(4));
    if (chance(30))
        habits.resets << "eParam_NDIName"
                      << "eParam_DHCP"
                      << "eParam_NDIHXQuality";
    const auto some = [this](int percent) {
        return chance(percent) ? parameters().at(draw(parameters().size())) : QString();
    };
    habits.unreadable = some(3);
    habits.missing = some(5);
    habits.unwritable = some(5);
    habits.misunderstood = some(3);
}

/// What happens to boxes and program while the upgrades go on.
void UpgradeWorld::planMeanwhile()
{
    const auto at = [this](int latest, const std::function<void()>& event) {
        const qint64 when = draw(latest);
        m_lastEvent = qMax(m_lastEvent, when);
        m_time.in(when, event);
    };
    if (chance(20))
        at(120000, [=] { m_lan.setDeaf(anyBox(), 500 + draw(4000)); });
    if (chance(10))
        at(200000, [=] { m_lan.powerCycle(anyBox(), 5000 + draw(60000)); });
    if (chance(10) && m_lan.boxes().size() > 1)
        at(200000, [=] {
            sim::ModelBox& a = *m_lan.boxes()[0];
            sim::ModelBox& b = *m_lan.boxes()[1];
            const QString address = a.address;
            m_lan.powerCycle(a, 6000 + draw(6000), b.address);
            m_lan.powerCycle(b, 6000 + draw(6000), address);
        });
    if (chance(5))
        at(200000, [=] {
            sim::ModelBox& box = anyBox();
            box.settings["eParam_FirmVersion"] = "1.2.0.555";
            m_lan.powerCycle(box, 9000);
        });
    if (chance(5))
        at(60000, [=] {
            m_store.isFull = true;
            m_time.in(20000, [=] { m_store.isFull = false; });
            m_lastEvent = qMax(m_lastEvent, m_time.now() + 20000);
        });
    for (int n = draw(4) - 1; n > 0; --n) {
        at(500000, [=] {
            endProgram();
            m_time.in(1000 + draw(60000), [=] { startProgram(); });
        });
        m_lastEvent += 61000;
    }
    for (int n = draw(4) - 1; n > 0; --n)
        at(700000, [=] { beginBatch(chance(60)); });
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
                         const bool wanted = chance(85);
                         m_lastEvent = qMax(m_lastEvent, m_time.now() + 20000);
                         m_time.in(draw(20000), [this, macs, wanted, run = m_store.program] {
                             if (!m_fleet || run != m_store.program)
                                 return;
                             if (wanted)
                                 m_fleet->release(macs);
                             else
                                 m_fleet->dropSettings(macs);
                         });
                     });
    QObject::connect(m_fleet.get(), &UpgradeFleet::boxIdentified, m_fleet.get(), [this] {
        if (!chance(1))
            return;
        const int when = draw(4000);
        m_lastEvent = qMax(m_lastEvent, m_time.now() + when + 5000);
        m_time.in(when, [this] {
            endProgram();
            m_time.in(3000, [this] { startProgram(); });
        });
    });
    m_lan.note("the program starts");
    QObject::connect(m_fleet.get(), &UpgradeFleet::told, m_fleet.get(),
                     [this](BoxUpgrade* box, const QString& line) {
                         m_lan.note(box->row().mac + " tells: " + line);
                     });
    m_fleet->adopt(sessionsOf(m_store.journals));
}

/// Killed: nothing more is saved. Sometimes closed instead.
void UpgradeWorld::endProgram()
{
    if (m_fleet && chance(70))
        ++m_store.program;
    m_fleet.reset();
    m_lan.note("the program ends");
}

void UpgradeWorld::beginBatch(bool keep)
{
    if (!m_fleet)
        return;
    bool begun = false;
    for (auto it = m_list.cbegin(); it != m_list.cend(); ++it) {
        // Its row may not have been told yet who it is.
        const QString known = chance(5) ? QString() : it.value();
        if (m_fleet->owns(known) || !chance(90))
            continue;
        if (!begun)
            m_lan.note(keep ? "batch that keeps" : "batch"),
                m_fleet->begin({"/KORA_" + packageVersion + ".dat", "digest", packageVersion});
        begun = true;
        if (!keep)
            m_plain << it.value();
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
    m_isDetailed = chance(10);
    m_store.delay = chance(5) ? 2500 : 5;
    m_lan.setLoss(chance(10) ? 2 : 0);
    startProgram();
    planMeanwhile();
    beginBatch(chance(75));
    // Quiet for so long that nobody will be found any more, and everything is saved.
    for (int quiet = 0; quiet < 25 && m_time.now() < longest; quiet = isQuiet() ? quiet + 1 : 0) {
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
    check();
    return m_problems;
}

void UpgradeWorld::complain(const QString& of, const QString& what)
{
    m_problems << of + ": " + what;
}

void UpgradeWorld::check()
{
    if (m_time.now() >= longest)
        complain("world", "a story has no end");
    QHash<QString, const UpgradeRow*> latest;
    QSet<QString> handedOver;
    for (const UpgradeSession& session : qAsConst(m_store.reports)) {
        for (const UpgradeRow& row : session.rows) {
            checkRow(row);
            latest[row.mac] = &row;
            if (row.settings == Settings::HandedOver)
                handedOver << row.mac;
            else if (row.settings != Settings::NotKept && row.settings != Settings::NotSaved)
                handedOver.remove(row.mac);
            if (row.settings == Settings::Waiting)
                m_waitingRows << row.mac;
            if (row.settings == Settings::Waiting || row.settings == Settings::Dropped)
                m_waiting << row.mac;
            for (const QString& setting : row.failedSettings)
                m_named << row.mac + setting.section('=', 0, 0);
        }
        if (m_store.journals.contains(session.baseName()) && !session.hasWaitingSettings())
            complain(session.baseName(), "its journal is left open");
        if (!m_store.journals.contains(session.baseName()) && session.hasWaitingSettings())
            complain(session.baseName(), "its journal is lost");
    }
    for (const QString& mac : qAsConst(handedOver))
        complain(mac, "its settings were handed over to nobody");
    for (const auto& box : m_lan.boxes())
        checkBox(*box, latest.value(box->mac));
}

void UpgradeWorld::checkRow(const UpgradeRow& row)
{
    if (!row.settled)
        complain(row.mac, "not settled");
    if (row.verdict() == Verdict::UnderWay)
        complain(row.mac, "under way for ever");
    if (row.verdict() != Verdict::Proved)
        return;
    const auto& boxes = m_lan.boxes();
    const auto changed = std::count_if(boxes.begin(), boxes.end(), [&row](const auto& box) {
        return box->mac == row.mac && box->changedByOrder;
    });
    // Of two boxes with one MAC address no more are proved than have changed.
    const int proved = ++m_proved[row.mac];
    if (changed == 0 || (m_twins.contains(row.mac) && proved > changed))
        complain(row.mac, "proved, and it is not so");
}

void UpgradeWorld::checkBox(const sim::ModelBox& box, const UpgradeRow* latest)
{
    for (const QString& violation : box.violations)
        complain(box.mac, violation);
    // A program that ended before the restart does not make up for it: the box may be in use.
    if (m_store.program == 1 && latest && box.isOn && box.unapplied &&
        (latest->settings == Settings::Restored || latest->settings == Settings::Unverified))
        complain(box.mac, "restored, but never restarted");
    if (box.isOn && BoxProtocol::isIpv4Address(box.address) && m_waitingRows.contains(box.mac))
        complain(box.mac, "is there, but its settings wait");
    for (const char* name : {"eParam_NDIName", "eParam_NTPServer", "eParam_IPAddress"}) {
        const QString value = box.settings.value(name);
        for (auto it = m_original.cbegin(); it != m_original.cend(); ++it) {
            if (it.key() != box.mac && it.value().value(name) == value)
                complain(box.mac, QString(name) + " is that of " + it.key());
        }
    }
    if (!latest || m_twins.contains(box.mac))
        return;
    QStringList changed;
    for (const QString& name : parameters()) {
        const bool lost = box.settings.value(name) != m_original[box.mac].value(name);
        const bool known = name == box.habits.missing || name == box.habits.misunderstood;
        const bool reset = box.habits.resets.contains(name);
        // What a plain upgrade's firmware resets was not to be kept.
        if (lost && !known && !(reset && m_plain.contains(box.mac)) &&
            !m_named.contains(box.mac + name))
            changed << name;
    }
    if (!changed.isEmpty() && !m_waiting.contains(box.mac))
        complain(box.mac, QString("%1 says %2, but lost: %3")
                              .arg(UpgradeText::verdict(latest->verdict()))
                              .arg(int(latest->settings))
                              .arg(changed.join(' ')));
}

QMap<QString, int> UpgradeWorld::endings() const
{
    QMap<QString, int> endings;
    for (const UpgradeSession& session : m_store.reports)
        for (const UpgradeRow& row : session.rows)
            ++endings[UpgradeText::cells(session, row, session.started).mid(5, 2).join('|')];
    return endings;
}
