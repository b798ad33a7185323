// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/model_lan.h"
#include "upgrade/upgrade_record.h"

#include <QHash>
#include <QSet>

/// Knows each box's true history, and compares it with what the operator is told. Knows nothing of
/// how boxes are upgraded. Times are milliseconds, of whatever clock.
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
        bool doubtsRestart = false; ///< whether it restarted after its settings were written
        bool wasAway = false;
        qint64 from = 0;  ///< when its upgrade began, or earlier
        QString expected; ///< the version that its package tells
        bool isAmbiguous = false;
        QStringList absent{}; ///< settings that the box said it does not have
        QString stopped{};    ///< what the upgrade's own guard refused
    };
    /// A box in the end.
    struct Truth {
        QString mac;
        QString address;
        bool isOn = false;
        bool unapplied = false; ///< something was written since its last start
        QMap<QString, QString> settings;
        QStringList violations;
        std::vector<sim::ModelBox::Change> changes{};
        QMap<QString, QString> writtenElsewhere{}; ///< settings, by somebody else
        bool isInOtherHands = false;               ///< somebody else has changed its version
        bool writtenApart = false; ///< it or its twin, while the other could not be found
    };

    /// A box before everything. Two with the same MAC address are twins.
    void addBox(const QString& mac, const QMap<QString, QString>& settings,
                const sim::ModelBoxHabits& habits);
    /// A report, in the order of the batches; `journal`: its journal is still there.
    void addReport(const QString& name, const QVector<Told>& rows, bool journal);
    /// What is wrong. `boxes` in the order in which they were added.
    QStringList judge(const QVector<Truth>& boxes);
    void complain(const QString& of, const QString& what) { m_problems << of + ": " + what; }

    /// `passed`: what is to be taken from the rows' dates.
    static QVector<Told> told(const UpgradeSession& session, qint64 passed = 0);

private:
    struct Box {
        QString mac;
        QMap<QString, QString> settings;
        sim::ModelBoxHabits habits;
    };

    void addRow(const Told& row);
    void checkVerdict(const Told& row, const QVector<Truth>& boxes);
    void checkBox(const Truth& box, const Box& before);
    void checkValues(const Truth& box);
    void checkSettings(const Truth& box, const Box& before, const Told& latest);

    QVector<Box> m_boxes;
    QVector<Told> m_rows;
    QHash<QString, Told> m_latest;
    QSet<QString> m_twins;
    // MAC addresses of boxes:
    QSet<QString> m_plain;        ///< upgraded without keeping their settings
    QSet<QString> m_handedOver;   ///< that no later row answers for
    QSet<QString> m_waitingRows;  ///< whose settings wait for them
    QSet<QString> m_waiting;      ///< that miss their settings, as is told
    QSet<QString> m_unverified;   ///< whose settings could not be read again
    QSet<QString> m_named;        ///< and name of a setting that is told to be lost
    QHash<QString, int> m_proved; ///< upgrades that are told to be
    QStringList m_problems;
};
