// SPDX-License-Identifier: MIT
#pragma once

#include "upgrade/box_guard.h"
#include "upgrade/settings_reader.h"
#include "upgrade/settings_writer.h"
#include "upgrade/upgrade_record.h"

#include <QCoreApplication>
#include <QSet>

class BoxUpgrade;

/// The package of a batch.
struct FirmwarePackage {
    QString path;    ///< on this computer; empty when a batch is only watched on
    QString md5;     ///< lower-case hex
    QString version; ///< that its name tells; empty when it tells none
};

/// What a box under upgrade needs to know of the others, and tells them.
class UpgradeHost
{
public:
    UpgradeHost() = default;
    virtual ~UpgradeHost() = default;
    UpgradeHost(const UpgradeHost&) = delete;
    UpgradeHost& operator=(const UpgradeHost&) = delete;

    /// True once settings that wait for this box since an earlier upgrade have been put into its
    /// row.
    virtual bool takeOver(BoxUpgrade& box) = 0;
    /// Calls `then` once what is known of the box is safe on disk, or with false when it cannot be
    /// written. Later, never from within.
    virtual void keep(BoxUpgrade& box, std::function<void(bool kept)> then) = 0;
    /// Something of the box has changed; what its row says goes to disk soon.
    virtual void changed(BoxUpgrade& box) = 0;
    /// A line for the operator who follows this box.
    virtual void tell(BoxUpgrade& box, const QString& line) = 0;
    /// At `ip` answers a box with this MAC address.
    virtual void identified(const QString& ip, const QString& mac) = 0;
    virtual void versionTold(const QString& ip, const QString& version) = 0;
    /// Other addresses at which a box with this MAC address was last known.
    virtual QStringList otherAddresses(const QString& mac, const QString& ip) const = 0;
    /// Another upgrade that has a box with this MAC address already; null when none has.
    virtual BoxUpgrade* ownerBeside(const BoxUpgrade& box) const = 0;
    /// The settings of the box have been read before its upgrade.
    virtual void settingsRead(BoxUpgrade& box, const QVariantMap& values) = 0;
    /// Its settings are being written, with `values`.
    virtual void writeBackBegins(BoxUpgrade& box, const QVariantMap& values) = 0;
    /// They did not all take: the box restarts, and gets its last try.
    virtual void lastTryFollows(BoxUpgrade& box) = 0;
    /// Nothing more is written to it; what its row says of its settings is the last word.
    virtual void writeBackEnded(BoxUpgrade& box) = 0;
};

/// One box, from the moment that it is to be upgraded until its story has ended: the only one that
/// sends it anything meanwhile. Its steps, and what may be sent in each, are drawn in
/// docs/upgrade.md.
///
/// It knows nothing of widgets, timers and sockets: tick() is to be called often, answers come from
/// the link, and what it needs of the others from its host. All three outlive it, and so does the
/// session that its row is in.
class BoxUpgrade
{
    Q_DECLARE_TR_FUNCTIONS(BoxUpgrade)

public:
    enum class Step {
        Queued,          ///< nothing has been asked yet
        Identifying,     ///< who answers at the address, and with which version
        ReadingSettings, ///< those to be kept
        SwitchingDhcp,   ///< so that it is found wherever it comes back
        Uploading,
        Activating,  ///< told to change over, the answer is still to come
        Away,        ///< until it was away and is back, or tells the package's version
        WritingBack, ///< settings, then read again
        Restarting,  ///< after its settings were written
        Missing,     ///< not back in time, its settings wait: it is only asked who it is
        Ended,
    };

    BoxUpgrade(UpgradeSession& session, int row, BoxLink& link, const UpgradeClock& clock,
               UpgradeHost& host);
    ~BoxUpgrade();
    BoxUpgrade(const BoxUpgrade&) = delete;
    BoxUpgrade& operator=(const BoxUpgrade&) = delete;

    /// Begins with the first step. `keepSettings`: they are to be as before in the end.
    void start(const FirmwarePackage& package, bool keepSettings);
    /// Instead: nothing is sent to it, it counts in the batch as one of which nothing is known.
    void leaveOut(const QString& reason);
    /// Goes on where an earlier run of the program ended, as the row tells. Settings that wait are
    /// held until release() or dropSettings().
    void resume();
    void release();
    void dropSettings();
    /// Settings that wait are to be written as soon as the box answers; nothing else of an upgrade
    /// is under way in it.
    void awaitBox();
    /// A later upgrade of the same box takes over what waits for it; this one ends with
    /// endHandedOver(), once the later one is safe on disk.
    void handOver(UpgradeRow& to);
    void endHandedOver();

    /// Time has passed.
    void tick();
    /// One of the upgrade's seconds has passed.
    void countDown();
    /// The batch is over: an upload that still runs is given up.
    void endBatch();
    /// This box has told somebody at `ip` who it is.
    void heardAt(const QString& ip);
    /// Somebody answers at `ip`, which may be this box.
    void cameOnline(const QString& ip);

    Step step() const { return m_step; }
    UpgradeRow& row() const { return m_session.rows[m_index]; }
    UpgradeSession& session() const { return m_session; }
    /// Nobody else may write to the box.
    bool isOwner() const { return m_step != Step::Missing && m_step != Step::Ended; }

    /// Why a box that an upgrade has is not upgraded again.
    static QString ownedText();

    /// Its settings wait for the operator's word.
    bool isHeld() const { return m_held; }
    /// A later upgrade has taken over what waits.
    bool isHandingOver() const { return m_handingOver; }
    /// It has told who it is, or that it cannot, in this run of the program or an earlier one.
    bool isIdentified() const { return m_identified || m_step >= Step::Away; }

    // What the row of the list shows.
    bool isInBatch() const { return m_inBatch; }
    bool hasTimedOut() const { return m_timedOut; }
    bool hasSucceeded() const { return m_succeeded; }
    bool isUploaded() const { return m_uploaded; }
    int secondsLeft() const { return m_secondsLeft; }

    /// How long an upgrade may take, and a box stay away, in the upgrade's seconds.
    static constexpr int AllowanceTicks = BoxGuard::AllowanceTicks;

private:
    static constexpr int RestartTicks = 120;
    /// No busy network is silent for so long.
    static constexpr int SureAbsenceTicks = 20;
    using Next = void (BoxUpgrade::*)();

    void enter(Step step);
    void later(Next what, qint64 ms);
    void askAgain(Next what);
    void tell(const QString& line);
    void note(const QString& text);
    void leaveAlone(const QString& reason);
    void giveUpUpload(const QString& reason);
    void end();
    void stopSafely();
    void keep(std::function<void(bool kept)> then);
    void spendTime();
    qint64 ticks(int count) const { return qint64(count) * m_clock.tickMs(); }

    // Who it is.
    void identify();
    void askIdentity();
    void takeIdentity(const QString& answer);
    void leaveToOwner(const BoxUpgrade& owner);
    void anotherBox(const QString& mac);
    void askTwins(const QStringList& addresses, std::function<void(bool twins)> then);
    void askNextTwin(QStringList questions, std::function<void(bool twins)> then);
    /// Asks for the version before the change; `then` follows, with it or without.
    void askVersionBefore(Next then);
    void askVersionNow();
    void takeVersionBefore();
    void identified();
    /// Asks who answers at the row's address; `same` follows if it is this box. One that does not
    /// answer is asked again, another box ends the story.
    void confirm(Next same);
    void confirmNow();

    // What it has.
    void readSettings();
    void switchDhcp();
    void orderDhcp();

    // What it gets.
    void beginUploading();
    void upload();
    void uploadAgain();
    void takeUpload(const QString& answer);
    void activate();
    void askVersionAgain();
    void keepActivation();
    void orderActivation();
    void takeActivation(const QString& answer);
    void succeed();

    // Where it is.
    bool isWatching() const;
    void watch();
    void watchTime(qint64 now);
    void lookAt(const QString& ip);
    bool isLookingOut() const;
    void lookOut(qint64 now);
    int patience() const;
    bool isOutOfTime() const;
    void askAround();
    void takeAnswer(const QString& ip, const QString& answer);
    void takeWhereabouts();
    void takeRestart();
    void noteAbsence();
    void askVersion();
    void takeVersion(const QString& answer);
    bool isSteady() const;
    void changeOverEnded();
    void giveUpWaiting();

    // What it gets back.
    void writeBack();
    void beginWriting(bool twins);
    void takeOutcome(const SettingsWriter::Outcome& outcome);
    void confirmRestart();
    void orderRestart();
    void beginRestart();
    void restarted();
    bool wasSurelyAway() const;
    static QString restartDoubt();

    UpgradeSession& m_session;
    const int m_index;
    BoxGuard m_link;
    const UpgradeClock& m_clock;
    UpgradeHost& m_host;
    SettingsReader m_reader;
    SettingsWriter m_writer;
    FirmwarePackage m_package;
    BoxListener m_listener; ///< of this step
    BoxListener m_orders;   ///< of the activation, whenever it is answered
    BoxListener m_round;    ///< of who answers where

    Step m_step = Step::Queued;
    Next m_next = nullptr; ///< what is to be done at m_due
    Next m_confirmed = nullptr;
    Next m_versionAsked = nullptr;
    QString m_version; ///< told, and not known yet by whom
    qint64 m_due = 0;
    qint64 m_limit = 0;     ///< of the identification
    int m_failures = 0;     ///< questions in a row without an answer
    int m_versionTries = 0; ///< without an answer

    bool m_identified = false;
    bool m_deniesMac = false; ///< it has said once that it has no MAC address
    bool m_keep = false;
    bool m_tookOver = false; ///< settings that wait since an upgrade before
    bool m_inBatch = false;
    bool m_timedOut = false;
    bool m_succeeded = false;
    bool m_uploaded = false;
    bool m_held = false;        ///< the operator has not said whether the settings are wanted
    bool m_refused = false;     ///< the order to change over
    bool m_ordered = false;     ///< to change over, which has not ended yet
    bool m_wasAway = false;     ///< since it is watched
    bool m_hasMoved = false;    ///< away, as it answers elsewhere
    bool m_handingOver = false; ///< a later upgrade has taken over what waits
    bool m_askingVersion = false;
    bool m_isUnclear = false;   ///< in this round somebody at its address did not tell who he is
    bool m_restartSent = false; ///< the last order: the box was there to hear it
    bool m_restartAnswered = false; ///< the order
    int m_secondsLeft = AllowanceTicks;
    QString m_problem; ///< why the last upload failed

    qint64 m_spentBefore = 0; ///< milliseconds, in earlier runs of the program
    qint64 m_begunAt = 0;
    qint64 m_orderedAt = 0; ///< since when it is watched
    /// Since when it has told another version without a break; below 0: not.
    qint64 m_changedAt = -1;
    qint64 m_nextRound = 0;
    QSet<QString> m_candidates; ///< addresses to be asked, besides the row's
    QSet<QString> m_asked;      ///< those whose answer is still to come in this round
    QStringList m_answered;     ///< those at which the box answered in this round
    qint64 m_missedSince = 0;
    int m_missed = 0; ///< rounds in a row in which it did not answer
    int m_unseen = 0; ///< rounds in a row in which it did not tell who it is
    int m_lost = 0;   ///< write-backs that were broken off
    int m_restartOrders = 0;
};
