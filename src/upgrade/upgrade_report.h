// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/upgrade_judgement.h"
#include "upgrade/upgrade_sessions.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

class Item;
class UpgradeWatch;

/// What really happened in an upgrade, box by box: it follows each box until the box has reported
/// its version after the change, has its settings back, or has run out of time. Boxes are known by
/// their MAC address, wherever they come back.
///
/// Here it is put together: UpgradeWatch asks the boxes, UpgradeJudgement says what their answers
/// mean, mayWriteBack() what may be sent to them, UpgradeSessions keeps what is known.
class UpgradeReport : public QObject
{
    Q_OBJECT

public:
    /// `tickMs` is the length of the upgrade's second.
    UpgradeReport(UpgradeWatch& watch, int tickMs);
    ~UpgradeReport() override;

    /// Looks for batches that an earlier run of the program left open.
    void loadInterrupted();

    /// Begins the report of a batch; boxes are added to the latest one.
    void begin(const QString& package, const QString& md5);
    void addBox(Item* box, bool keepSettings);
    /// The settings of a box have been read, or could not be read whole.
    void setSaved(const QString& mac, const QVariantMap& values, bool whole);
    /// A box with a fixed address was switched to an assigned one.
    void setDhcpForced(const QString& mac);
    /// All boxes have been told, or were given up; called while their items still live.
    void batchEnded();

    /// Whether settings may be written to the box at `ip` now. One that is not in the report may
    /// always be written to.
    bool mayWriteBack(const QString& mac, const QString& ip) const;
    void setRestarting(const QString& mac);
    void setRestored(const QString& mac, UpgradeRow::Settings outcome, const QStringList& failed);
    /// The operator does not want the settings of an interrupted batch back.
    void dropSettings(const QStringList& macs);

    /// The box at `ip` has told its MAC address; seen() follows, once its version is known too.
    void macHeard(const QString& ip, const QString& mac);

    bool isEmpty() const { return m_sessions.isEmpty(); }
    /// Batches, oldest first.
    QVector<const UpgradeSession*> sessions() const { return m_sessions.all(); }

signals:
    void changed();
    /// A box answers at `ip`, and what it tells has been noted.
    void seen(const QString& ip, const QString& mac);
    /// Boxes of interrupted batches still miss their settings, saved at `when`.
    void settingsFound(const QMap<QString, QVariantMap>& saved, const QDateTime& when);
    /// Upgrades of this many boxes were cut short when the program last ended.
    void interruptedFound(int boxes);

private:
    /// One box of a batch, and what was seen of it.
    struct Box {
        UpgradeSession* session = nullptr;
        int index = 0;
        QPointer<Item> item;
        int missed = 0; ///< questions in a row without an answer
        bool wasDown = false;
        bool restarting = false;
        QString reported;
        QElapsedTimer sinceOrder; ///< since it was last told to change over or to restart
        QElapsedTimer sinceEnd;   ///< since its batch ended

        UpgradeRow& row() const { return session->rows[index]; }
    };

    Box* find(const QString& mac) const;
    UpgradeSigns signsOf(const Box& box) const;
    bool ticksPassed(const QElapsedTimer& since, int ticks) const;
    void noteProgress(Box& box);
    void noteMissed(const QString& mac);
    void noteVersion(const QString& ip, const QString& mac, const QString& version);
    void judge(const Box& box);
    void askAll();
    void adopt(const QVector<UpgradeSession*>& sessions);
    void touch(const Box& box);

    UpgradeWatch& m_watch;
    const int m_tickMs;
    UpgradeSessions m_sessions;
    UpgradeSession* m_latest = nullptr;
    std::vector<std::unique_ptr<Box>> m_boxes; ///< in the order of their batches
};
