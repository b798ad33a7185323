// SPDX-License-Identifier: MIT
#include "tests/upgrade/upgrade_checker.h"

#include "common/box_protocol.h"

using Settings = UpgradeRow::Settings;
using Verdict = UpgradeRow::Verdict;

QVector<UpgradeChecker::Told> UpgradeChecker::told(const UpgradeSession& session)
{
    QVector<Told> rows;
    for (const UpgradeRow& row : session.rows)
        rows << Told{row.mac,     row.verdict(), row.settings, row.failedSettings,
                     row.settled, row.aftermath};
    return rows;
}

void UpgradeChecker::addBox(const QString& mac, const QMap<QString, QString>& settings,
                            const sim::ModelBoxHabits& habits)
{
    if (m_original.contains(mac))
        m_twins << mac;
    m_original[mac] = settings;
    m_habits[mac] = habits;
}

void UpgradeChecker::addReport(const QString& name, const QVector<Told>& rows, bool journal)
{
    bool waits = false;
    for (const Told& row : rows) {
        m_rows << row;
        m_latest[row.mac] = row;
        if (row.settings == Settings::HandedOver)
            m_handedOver << row.mac;
        else if (row.settings != Settings::NotKept && row.settings != Settings::NotSaved)
            m_handedOver.remove(row.mac);
        if (row.settings == Settings::NotKept)
            m_plain << row.mac;
        if (row.settings == Settings::Waiting)
            m_waitingRows << row.mac;
        if (row.settings == Settings::Waiting || row.settings == Settings::Dropped)
            m_waiting << row.mac;
        waits = waits || row.settings == Settings::Waiting;
        for (const QString& setting : row.failedSettings)
            m_named << row.mac + setting.section('=', 0, 0);
    }
    if (journal && !waits)
        complain(name, "its journal is left open");
    if (!journal && waits)
        complain(name, "its journal is lost");
}

QStringList UpgradeChecker::judge(const QVector<Truth>& boxes, bool oneRun)
{
    for (const Told& row : qAsConst(m_rows))
        checkVerdict(row, boxes);
    for (const QString& mac : qAsConst(m_handedOver))
        complain(mac, "its settings were handed over to nobody");
    for (const Truth& box : boxes)
        checkBox(box, oneRun);
    return m_problems;
}

void UpgradeChecker::checkVerdict(const Told& row, const QVector<Truth>& boxes)
{
    if (!row.settled)
        complain(row.mac, "not settled");
    if (row.verdict == Verdict::UnderWay)
        complain(row.mac, "under way for ever");
    if (row.verdict != Verdict::Proved)
        return;
    const auto changed = std::count_if(boxes.begin(), boxes.end(), [&row](const Truth& box) {
        return box.mac == row.mac && box.changed;
    });
    // Of two boxes with one MAC address no more are proved than have changed.
    const int proved = ++m_proved[row.mac];
    if (changed == 0 || (m_twins.contains(row.mac) && proved > changed))
        complain(row.mac, "proved, and it is not so");
}

void UpgradeChecker::checkBox(const Truth& box, bool oneRun)
{
    for (const QString& violation : box.violations)
        complain(box.mac, violation);
    checkValues(box);
    if (box.isOn && BoxProtocol::isIpv4Address(box.address) && m_waitingRows.contains(box.mac))
        complain(box.mac, "is there, but its settings wait");
    if (!m_latest.contains(box.mac))
        return;
    const Told& latest = m_latest[box.mac];
    // A program that ended before the restart does not make up for it: the box may be in use.
    if (oneRun && box.isOn && box.unapplied && latest.aftermath.isEmpty() &&
        (latest.settings == Settings::Restored || latest.settings == Settings::Unverified))
        complain(box.mac, "restored, but never restarted");
    if (!m_twins.contains(box.mac))
        checkSettings(box, latest);
}

/// What only one box has is with no other.
void UpgradeChecker::checkValues(const Truth& box)
{
    for (const char* name : {"eParam_NDIName", "eParam_NTPServer", "eParam_IPAddress"}) {
        const QString value = box.settings.value(name);
        for (auto it = m_original.cbegin(); it != m_original.cend(); ++it) {
            if (it.key() != box.mac && it.value().value(name) == value)
                complain(box.mac, QString(name) + " is that of " + it.key());
        }
    }
}

/// What it had it has, or what it has lost is told.
void UpgradeChecker::checkSettings(const Truth& box, const Told& latest)
{
    const sim::ModelBoxHabits& habits = m_habits[box.mac];
    QStringList changed;
    for (const QString& name : BoxProtocol::configurationParameters()) {
        const bool lost = box.settings.value(name) != m_original[box.mac].value(name);
        const bool known = name == habits.missing || name == habits.misunderstood;
        // What a plain upgrade's firmware resets was not to be kept.
        const bool reset = habits.resets.contains(name) && m_plain.contains(box.mac);
        if (lost && !known && !reset && !m_named.contains(box.mac + name))
            changed << name;
    }
    if (!changed.isEmpty() && !m_waiting.contains(box.mac))
        complain(box.mac, QString("%1 says %2, but lost: %3")
                              .arg(UpgradeText::verdict(latest.verdict))
                              .arg(int(latest.settings))
                              .arg(changed.join(' ')));
}
