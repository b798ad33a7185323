// SPDX-License-Identifier: MIT
#pragma once

#include "common/command_runner.h"
#include "device/recording_download.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QVariantMap>
#include <QVector>

#include <memory>
#include <optional>

/// What a row shows of the upgrade of its box.
struct ItemUpgrade {
    bool upgrading;
    bool timedOut;
    bool succeeded;
    bool uploaded;
    int secondsLeft; ///< of the allowance
};

/// One row of the device tree: the root, a group, a box or a line of information; and one entry of
/// the storage list. What the tree, the window and an upgrade know of it lives in named dynamic
/// properties, so that all read one record; their names stand behind the readers and writers here
/// and nowhere else.
///
/// An item owns its children. The tree owns all items through its root; whoever waits holds a
/// QPointer. Commands of an item that is deleted meanwhile run to their end without it.
class Item : public QObject
{
    Q_OBJECT

public:
    /// How long an upgrade may take, in its seconds (ticks of the countdown).
    static constexpr int UpgradeAllowance = 600;

    explicit Item(Item* parentItem = nullptr);
    ~Item() override;

    // Each kind of item; the caller owns it until a tree or list takes it.
    static std::unique_ptr<Item> makeGroup(const QString& name);
    static std::unique_ptr<Item> makeBox(const QString& ip);
    static std::unique_ptr<Item> makeInformation(const QString& caption, const QString& content,
                                                 const QString& ip);
    /// The recording `fileName` on the box at `ip`.
    static std::unique_ptr<Item> makeRecording(const QString& fileName, const QString& ip);

    Item* parentItem() const { return m_parentItem; }
    int childCount() const { return m_children.size(); }
    Item* child(int row) const { return m_children.at(row); }
    /// This item's row in its parent, 0 for the root.
    int row() const;

    /// Where `child` would stand: after the last child that sorts before it, by title (groups) or
    /// by the numbers of its address (boxes).
    int sortedRow(const Item* child, bool byTitle) const;
    /// Inserts `child` at its sorted row and takes ownership; gives it its level.
    void appendChild(Item* child, bool byTitle);
    /// Inserts `child` at `row`; for lists in order of arrival.
    void insertChild(int row, Item* child);
    /// Takes the child at `row` out; the caller owns it.
    Item* takeChild(int row);

    bool isGroup() const;
    void setGroup(bool group);
    QString address() const { return m_address; }
    void setAddress(const QString& ip);
    QString title() const { return m_title; }
    void setTitle(const QString& text);
    QString content() const;
    void setContent(const QString& text);
    int level() const;
    /// Where a row of information stands among the others.
    int place() const { return m_place; }
    void setPlace(int place) { m_place = place; }
    /// A row of information that says what is wrong.
    bool isFault() const { return m_isFault; }
    void setFault(bool isFault) { m_isFault = isFault; }

    /// What the tree shows: the content, or the title when there is none.
    QString displayText() const;
    /// The title followed by the content in brackets.
    QString combinedLabel() const;

    /// Of a group while only some of its boxes are in sight: how many; no value while all are.
    std::optional<int> shownCount() const { return m_shownCount; }
    void setShownCount(std::optional<int> count) { m_shownCount = count; }

    // --- a box ---------------------------------------------------------------------------------

    /// True for a box, whatever its model.
    bool isDevice() const;
    /// True for a box of the KORA family.
    bool isKora() const;
    /// True when the box answered the last check; a new one counts as online.
    bool isOnline() const;
    void setOnline(bool online);
    /// What the box calls itself, as it told last; empty while it is not known. One line.
    QString name() const { return m_name; }
    void setName(const QString& name);
    /// When it last answered a check; invalid for one that never has.
    QDateTime lastSeen() const { return m_lastSeen; }
    void noteSeen(const QDateTime& now) { m_lastSeen = now; }
    QString macAddress() const { return m_macAddress; }
    void setMacAddress(const QString& mac);
    QString firmwareVersion() const;
    void setFirmwareVersion(const QString& version);
    /// The base name of the firmware package at hand, which the box's own version is compared with.
    QString packageName() const;
    void setPackageName(const QString& baseName);
    /// True when a newer firmware package than the box's own lies ready.
    bool hasNewerFirmware() const;
    /// A parameter as the box last reported it; `name` is one of the wire protocol. Invalid before.
    QVariant parameter(const QString& name) const;
    void setParameter(const QString& name, const QVariant& value);
    /// The name of the recording in progress, empty when there is none.
    QString recordingInProgress() const;
    void setRecordingInProgress(const QString& fileName);
    /// The settings that are being written back to the box.
    void setConfigurationToRestore(const QVariantMap& values);
    /// The marks of the list's marking modes.
    int selectOrder() const;
    bool isCorrelated() const;

    // --- an upgrade of a box -------------------------------------------------------------------

    bool isUpgrading() const;
    /// An upgrade has this box, until its story ends: nobody else may write to it or restart it.
    bool isOwned() const { return m_owned || isUpgrading(); }
    void setOwned(bool owned) { m_owned = owned; }
    /// Its upgrade has begun, or waits for it: not only the package's digest is awaited.
    bool isTaken() const { return m_owned; }
    /// What the operator has ordered has not ended in it yet: an upgrade waits for that.
    bool isOrdered() const { return m_orders > 0; }
    void countOrders(int more) { m_orders += more; }
    /// The upload was refused, the box was left alone, or the time has run out; of these the first
    /// may still succeed.
    bool hasTimedOut() const;
    bool hasSucceeded() const;
    /// The box has the whole package.
    bool isUploaded() const;
    /// What is left of the allowance, in its seconds.
    int secondsLeft() const;
    /// What goes on with it right now, in a word or two; empty when nothing that is worth one.
    QString activity() const { return m_activity; }
    void setActivity(const QString& words) { m_activity = words; }
    /// Progress messages, oldest first.
    QStringList tips() const;

    void showUpgrade(const ItemUpgrade& state);
    /// Adds a line to the upgrade's progress messages; the oldest of 200 are dropped.
    void addTip(const QString& text);

    // --- a recording ---------------------------------------------------------------------------

    QString fileName() const;
    /// What the type of the file is told by.
    QString filePath() const;
    /// True while it is the one being played.
    bool isPlaying() const;
    void setPlaying(bool playing);
    /// Where a dragged row would land beside this one: 0 nowhere, else a marker's number.
    int dropPosition() const;

    RecordingSource recordingSource() const { return {address(), macAddress(), fileName()}; }
    /// Deletes the recording on its box. Ends in deleteEnded.
    void record_del();
    /// Downloads the recording into `folder`, which ends in "/", under a safe and free name; goes
    /// on with what an earlier try has left there. Ends in downloadEnded, at once when the folder
    /// takes no files.
    void download(const QString& folder);
    /// Ends the download and removes what has come.
    void cancelDownload();

public slots:
    void execCurl(const QString& str, const QVariantMap& map);
    void R_readyReadStandardOutput();
    void R_stateChanged(QProcess::ProcessState state);

signals:
    void deleteEnded(bool succeeded);
    void downloadProgressed(const DownloadProgress& progress);
    void downloadEnded(const DownloadResult& result);

protected:
    bool event(QEvent* event) override;

private:
    void setDefaults();
    void setLevel(int level);
    void setUpgrading(bool upgrading);
    void setTimedOut(bool timedOut);
    void setSecondsLeft(int seconds);
    void setSucceeded(bool succeeded);
    void setUploaded(bool uploaded);
    void setActivated(bool activated);

    Item* m_parentItem;
    QVector<Item*> m_children;
    // Copies of three properties: the whole tree is searched by them for every address of a sweep.
    QString m_address;
    QString m_title;
    QString m_macAddress;
    QString m_name;
    QDateTime m_lastSeen;
    CommandRunner m_runner;
    std::unique_ptr<RecordingDownload> m_download;
    int m_place = 0;
    QString m_activity;
    bool m_isFault = false;
    std::optional<int> m_shownCount;
    bool m_owned = false;
    int m_orders = 0; ///< of the operator, under way
};

/// The name of the family whose boxes the program configures.
QString koraFamily();
