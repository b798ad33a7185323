// SPDX-License-Identifier: MIT
#include "tests/upgrade/upgrade_checker.h"

#include "common/box_protocol.h"

using Settings = UpgradeRow::Settings;
using Verdict = UpgradeRow::Verdict;

QVector<UpgradeChecker::Told> UpgradeChecker::told(const UpgradeSession& session, qint64 passed)
{
    QVector<Told> rows;
    for (const UpgradeRow& row : session.rows)
        rows << Told{row.mac,      row.verdict(),
                     row.settings, row.failedSettings,
                     row.settled,  !row.aftermath.isEmpty(),
                     row.wasAway,  row.started.toMSecsSinceEpoch() - passed,
                     row.expected, row.ambiguous,
                     row.absent,   row.stopped};
    return rows;
}

void UpgradeChecker::addBox(const QString& mac, const QMap<QString, QString>& settings,
                            const sim::ModelBoxHabits& habits)
{
    for (const Box& box : qAsConst(m_boxes)) {
        if (box.mac == mac)
            m_twins << mac;
    }
    m_boxes << Box{mac, settings, habits};
}

void UpgradeChecker::addReport(const QString& name, const QVector<Told>& rows, bool journal)
{
    bool waits = false;
    for (const Told& row : rows) {
        addRow(row);
        waits = waits || row.settings == Settings::Waiting;
    }
    if (journal && !waits)
        complain(name, "its journal is left open");
    if (!journal && waits)
        complain(name, "its journal is lost");
}

void UpgradeChecker::addRow(const Told& row)
{
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
    if (row.settings == Settings::Waiting || row.settings == Settings::Dropped ||
        row.settings == Settings::Ambiguous)
        m_waiting << row.mac;
    if (row.settings == Settings::Unverified)
        m_unverified << row.mac;
    for (const QString& setting : row.failedSettings)
        m_named << row.mac + setting.section('=', 0, 0);
    for (const QString& name : row.absent)
        m_named << row.mac + name;
}

QStringList UpgradeChecker::judge(const QVector<Truth>& boxes)
{
    for (const Told& row : qAsConst(m_rows))
        checkVerdict(row, boxes);
    for (const QString& mac : qAsConst(m_handedOver))
        complain(mac, "its settings were handed over to nobody");
    for (int n = 0; n < boxes.size(); ++n)
        checkBox(boxes[n], m_boxes[n]);
    return m_problems;
}

void UpgradeChecker::checkVerdict(const Told& row, const QVector<Truth>& boxes)
{
    if (!row.stopped.isEmpty())
        complain(row.mac, "its guard had to stop it: " + row.stopped);
    if (!row.settled)
        complain(row.mac, "not settled");
    if (row.verdict == Verdict::UnderWay)
        complain(row.mac, "under way for ever");
    if (row.verdict != Verdict::Proved)
        return;
    // An upgrade is proved by a change of its own, to its package.
    int changes = 0;
    bool isTrue = false;
    for (const Truth& box : boxes) {
        if (box.mac != row.mac)
            continue;
        changes += int(box.changes.size());
        for (const sim::ModelBox::Change& change : box.changes)
            isTrue |=
                change.at >= row.from && (row.expected.isEmpty() || change.version == row.expected);
        // A name without a version leaves it at that another version was told after an absence.
        if (row.expected.isEmpty() && row.wasAway && box.isInOtherHands)
            return;
    }
    // Twins that were never seen together nobody can tell apart.
    const bool isTwin = m_twins.contains(row.mac);
    if (isTwin ? row.isAmbiguous : !isTrue || ++m_proved[row.mac] > changes)
        complain(row.mac, "proved, and it is not so");
}

void UpgradeChecker::checkBox(const Truth& box, const Box& before)
{
    for (const QString& violation : box.violations)
        complain(box.mac, violation);
    checkValues(box);
    const bool isTwin = m_twins.contains(box.mac);
    if (box.isOn && BoxProtocol::isIpv4Address(box.address) && m_waitingRows.contains(box.mac) &&
        !isTwin)
        complain(box.mac, "is there, but its settings wait");
    if (!m_latest.contains(box.mac))
        return;
    const Told& latest = m_latest[box.mac];
    const bool isRestored =
        latest.settings == Settings::Restored || latest.settings == Settings::Unverified;
    if ((box.isOn ? box.unapplied : before.habits.diesOfRestart) && isRestored &&
        !latest.doubtsRestart && !isTwin)
        complain(box.mac, "restored, but never restarted, or gone since, without a word");
    if (!box.writtenApart)
        checkSettings(box, before, latest);
}

/// What only one box has is with no other. Twins, which nothing else tells apart, may get it of
/// each other.
void UpgradeChecker::checkValues(const Truth& box)
{
    for (const char* name : {"eParam_NDIName", "eParam_NTPServer", "eParam_IPAddress"}) {
        const QString value = box.settings.value(name);
        for (const Box& other : qAsConst(m_boxes)) {
            if (other.mac != box.mac && other.settings.value(name) == value)
                complain(box.mac, QString(name) + " is that of " + other.mac);
        }
    }
}

/// What it had it has, or what it has lost is told.
void UpgradeChecker::checkSettings(const Truth& box, const Box& before, const Told& latest)
{
    const sim::ModelBoxHabits& habits = before.habits;
    QStringList changed;
    for (const QString& name : BoxProtocol::configurationParameters()) {
        const QString value = box.settings.value(name);
        const bool lost = value != before.settings.value(name) &&
                          value != box.writtenElsewhere.value(name, "nothing");
        const bool known = name == habits.missing ||
                           (name == habits.misunderstood && m_unverified.contains(box.mac));
        // What a plain upgrade's firmware resets was not to be kept.
        const bool reset =
            habits.resets.contains(name) &&
            (m_plain.contains(box.mac) || habits.missing == BoxProtocol::MACAddress ||
             habits.denied == BoxProtocol::MACAddress);
        if (lost && !known && !reset && !m_named.contains(box.mac + name))
            changed << name;
    }
    if (!changed.isEmpty() && !m_waiting.contains(box.mac))
        complain(box.mac, QString("%1 says %2, but lost: %3")
                              .arg(UpgradeText::verdict(latest.verdict))
                              .arg(int(latest.settings))
                              .arg(changed.join(' ')));
}
