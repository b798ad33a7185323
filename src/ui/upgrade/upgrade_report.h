// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"
#include "upgrade/upgrade_journal.h"
#include "upgrade/upgrade_record.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

#include <memory>
#include <vector>

class Item;
struct HttpResult;

/// What really happened in an upgrade, box by box: it watches each box until the box has reported
/// its version after the change, has its settings back, or has run out of time. Boxes are known by
/// their MAC address, wherever they come back.
class UpgradeReport : public QObject
{
    Q_OBJECT

public:
    /// `tickMs` is the length of the upgrade's second.
    UpgradeReport(const Hub& hub, int tickMs);
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

    /// Whether settings may be written to the box at `ip`, which makes it restart: not while it
    /// receives a package or may still be changing over to it.
    bool mayWriteBack(const QString& mac, const QString& ip) const;
    void setRestarting(const QString& mac);
    void setRestored(const QString& mac, UpgradeRow::Settings outcome, const QStringList& failed);
    /// The operator does not want the settings of an interrupted batch back.
    void dropSettings(const QStringList& macs);

    /// The box at `ip` has told its MAC address.
    void noteMac(const QString& ip, const QString& mac);
    /// Answers to this object's own requests: their types begin with these.
    static QString seenType() { return QStringLiteral("upgradeSeen"); }
    static QString versionType() { return QStringLiteral("upgradeVersion"); }
    void handleSeen(const HttpResult& result);
    void handleVersion(const HttpResult& result);

    bool isEmpty() const { return m_sessions.empty(); }
    /// Batches, oldest first.
    QVector<const UpgradeSession*> sessions() const;

signals:
    void changed();
    /// A watched box answers at `ip`, and its version has been noted.
    void seen(const QString& ip, const QString& mac);
    /// Boxes of interrupted batches still miss their settings, saved at `when`.
    void settingsFound(const QMap<QString, QVariantMap>& saved, const QDateTime& when);
    /// Upgrades of this many boxes were cut short when the program last ended.
    void interruptedFound(int boxes);

private:
    /// One box under watch.
    struct Watch {
        UpgradeSession* session = nullptr;
        int index = 0;
        QPointer<Item> item;
        bool asked = false;       ///< a request is under way
        int missed = 0;           ///< requests in a row without an answer
        bool wasDown = false;     ///< it stopped answering since it was last told to restart
        bool restarting = false;  ///< told to restart with its settings
        QString reported;         ///< the version it told last
        QElapsedTimer sinceOrder; ///< since it was last told to change over or to restart
        QElapsedTimer sinceEnd;   ///< since its batch ended

        UpgradeRow& row() const { return session->rows[index]; }
    };

    Watch* watchOf(const QString& mac);
    const Watch* watchOf(const QString& mac) const;
    void noteProgress(Watch& watch);
    void judge(Watch& watch);
    void poll();
    void touched(UpgradeSession* session);
    void saveTouched();
    void adopt(const QVector<UpgradeSession>& sessions);
    void adoptRow(UpgradeSession* session, int index);
    bool ticksPassed(const QElapsedTimer& since, int ticks) const;

    const Hub m_hub;
    const int m_tickMs;
    UpgradeJournal m_journal;
    std::vector<std::unique_ptr<UpgradeSession>> m_sessions;
    std::vector<std::unique_ptr<Watch>> m_watches;
    QVector<UpgradeSession*> m_touched;
    QTimer m_poll;
    QTimer m_save;
};
