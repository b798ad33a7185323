// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/model_lan.h"
#include "upgrade/upgrade_record.h"

#include <QHash>
#include <QSet>

/// Knows each box's true history, and compares it with what the operator is told. Knows nothing of
/// how boxes are upgraded.
class UpgradeChecker
{
public:
    /// What a report says of a box.
    struct Told {
        QString mac;
        UpgradeRow::Verdict verdict = UpgradeRow::Verdict::UnderWay;
        UpgradeRow::Settings settings = UpgradeRow::Settings::NotKept;
        QStringList failedSettings; ///< "name=value"
        bool settled = false;
        QString aftermath;
    };
    /// A box in the end.
    struct Truth {
        QString mac;
        QString address;
        bool isOn = false;
        bool changed = false;   ///< it runs the package since an activation
        bool unapplied = false; ///< something was written since its last start
        QMap<QString, QString> settings;
        QStringList violations;
    };

    /// A box before everything. Two with the same MAC address are twins.
    void addBox(const QString& mac, const QMap<QString, QString>& settings,
                const sim::ModelBoxHabits& habits);
    /// A report, in the order of the batches; `journal`: its journal is still there.
    void addReport(const QString& name, const QVector<Told>& rows, bool journal);
    /// What is wrong; `oneRun`: the program was never ended meanwhile.
    QStringList judge(const QVector<Truth>& boxes, bool oneRun);

    static QVector<Told> told(const UpgradeSession& session);

private:
    void checkVerdict(const Told& row, const QVector<Truth>& boxes);
    void checkBox(const Truth& box, bool oneRun);
    void checkValues(const Truth& box);
    void checkSettings(const Truth& box, const Told& latest);
    void complain(const QString& of, const QString& what) { m_problems << of + ": " + what; }

    QMap<QString, QMap<QString, QString>> m_original;
    QHash<QString, sim::ModelBoxHabits> m_habits;
    QVector<Told> m_rows;
    QHash<QString, Told> m_latest;
    QSet<QString> m_twins;
    QSet<QString> m_plain; ///< MAC addresses of boxes upgraded without keeping their settings
    QHash<QString, int> m_proved; ///< upgrades that are told to be, by MAC address
    QSet<QString> m_handedOver;   ///< MAC addresses of boxes that no later row answers for
    QSet<QString> m_waitingRows;  ///< MAC addresses of boxes whose settings wait for them
    QSet<QString> m_waiting;      ///< MAC addresses of boxes that miss their settings, as is told
    QSet<QString> m_named; ///< single settings that are told to be lost: MAC address and name
    QStringList m_problems;
};
