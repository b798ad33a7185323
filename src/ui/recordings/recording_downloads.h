// SPDX-License-Identifier: MIT
#pragma once

#include "common/loose_queue.h"
#include "device/recording_download.h"
#include "ui/hub/hub.h"

#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>
#include <vector>

class DownloadList;
class DownloadRow;
class Item;
class ListWidget;
class QListWidgetItem;

/// Downloads recordings to this computer, a few at once; the others wait for their turn. A download
/// has its own record of the recording, so that it goes on whatever becomes of the list and of the
/// selection.
class RecordingDownloads : public QObject
{
    Q_OBJECT

public:
    /// More at once would only slow each other down, and the box that records.
    static constexpr int MostAtOnce = 4;

    RecordingDownloads(const Hub& hub, ListWidget& list, DownloadList& view);
    ~RecordingDownloads() override;

    /// Asks where to save the recordings of `rows`, then downloads them. The question blocks,
    /// serving events.
    void ask(const QList<QListWidgetItem*>& rows);
    /// Shows, soon, what earlier runs of the program have left unfinished.
    void showKept();
    /// Nothing runs or waits.
    bool isIdle() const { return unfinished() == 0; }
    /// False when downloads run or wait and the operator does not want to break them off. Asking
    /// blocks, serving events.
    bool mayClose();

private:
    enum class State {
        Waiting, ///< for its turn
        Running,
        Kept, ///< has broken off, and goes on when the operator wants it to
    };
    struct Job {
        std::unique_ptr<Item> recording;
        QString folder;   ///< ends in "/"
        DownloadRow* row; ///< owned by the view
        State state;
    };

    QString chooseFolder();
    int unfinished() const;
    std::vector<Job>::iterator jobOf(const Item* recording);
    Job* findJob(const Item& recording, const QString& folder);
    Job& add(std::unique_ptr<Item> recording, const QString& folder);
    void addKept(const QVector<KeptPart>& parts);
    void resume(const Item* recording);
    void startNext();
    void cancel(Item* recording);
    void end(Item* recording, const DownloadResult& result);
    void noteResult(const Item& recording, const DownloadResult& result);
    void tell();

    const Hub m_hub;
    ListWidget& m_list;
    DownloadList& m_view;
    std::vector<Job> m_jobs;
    LooseQueue m_disk;         ///< does what parts that nobody downloads need
    QStringList m_completed;   ///< paths nobody has been told of yet
    QStringList m_failed;      ///< messages nobody has been told of yet
    bool m_isPartKept = false; ///< of one of those that failed
    bool m_telling = false;
    bool m_asksToClose = false;
    bool m_isChoosing = false; ///< a folder: its dialog is about to open
};
