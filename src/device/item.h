// SPDX-License-Identifier: MIT
#pragma once

#include "common/command_runner.h"
#include "device/recording_download.h"

#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QVariantMap>
#include <QVector>

#include <memory>

/// One row of the device tree: the root, a group, a box or a line of information. All state lives
/// in named dynamic properties, so that the tree, the window and an upgrade read one record.
///
/// An item owns its children. The tree owns all items through its root; whoever waits holds a
/// QPointer. Commands of an item that is deleted meanwhile run to their end without it.
class Item : public QObject
{
    Q_OBJECT

public:
    explicit Item(Item* parentItem = nullptr);
    ~Item() override;

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

    bool isGroup() const { return property("isdir").toBool(); }
    QString address() const { return m_address; }
    QString title() const { return m_title; }
    QString macAddress() const { return m_macAddress; }
    QString content() const { return property("content").toString(); }
    int level() const { return property("level").toInt(); }

    /// What the tree shows: the content, or the title when there is none.
    QString displayText() const;
    /// The title followed by the content in brackets.
    QString combinedLabel() const;
    /// True for a box of the KORA family.
    bool isKora() const;
    /// True when a newer firmware package than the box's own lies ready.
    bool hasNewerFirmware() const;

    /// Adds a line to the upgrade's progress messages; the oldest of 200 are dropped.
    void addTip(const QString& text);
    /// Marks the box as taken by an upgrade that is being prepared: nothing is sent yet. An upload
    /// of an earlier upgrade that still runs is given up.
    void reserveForUpgrade();
    /// Uploads the package `file` and activates it; `md5` is its digest in lower-case hex.
    void startUpgrade(const QString& file, const QString& md5);
    /// Takes the box out of its upgrade. An upload that still runs is given up, so that no package
    /// arrives that nobody would activate; an activation is left alone.
    void endUpgrade();
    /// The box came back from its upgrade, wherever it is now.
    void markActivated();

    /// For a recording ("filename" on the box at "deviceip"): deletes it there. Ends in
    /// deleteEnded.
    void record_del();
    /// For a recording: downloads it into `folder`, which ends in "/", under a safe and free name.
    /// Ends in downloadEnded, at once when the folder takes no files.
    void download(const QString& folder);
    void cancelDownload();

public slots:
    void execCurl(const QString& str, const QVariantMap& map);
    void R_readyReadStandardOutput();
    void R_stateChanged(QProcess::ProcessState state);

signals:
    void deleteEnded(bool succeeded);
    void downloadProgressed(const DownloadProgress& progress);
    void downloadEnded(const DownloadResult& result);
    /// The upgrade of this box has taken or missed a step.
    void upgradeChanged();

protected:
    bool event(QEvent* event) override;

private:
    void upload(const QString& file, const QString& md5);
    void handleUploadReply(const QProcess& process, const QString& reply);
    void handleActivationReply(const QString& reply);
    void readDownloadReport();
    void endDownload(const QProcess& process);

    Item* m_parentItem;
    QVector<Item*> m_children;
    // Copies of three properties: the whole tree is searched by them for every address of a sweep.
    QString m_address;
    QString m_title;
    QString m_macAddress;
    CommandRunner m_runner;
    std::unique_ptr<RecordingDownload> m_download;
    QPointer<QProcess> m_downloadProcess;
    QString m_downloadProblem; ///< why it was ended early, empty: the operator did
    bool m_downloadStopped = false;
    /// Number of the latest upgrade: what an earlier one still reports is not heard.
    int m_upgradeRun = 0;
    QPointer<QProcess> m_upload;
};

/// The name of the family whose boxes the program configures.
QString koraFamily();
