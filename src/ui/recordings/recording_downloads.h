// SPDX-License-Identifier: MIT
#pragma once

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

/// Downloads recordings to this computer. A download has its own record of the recording, so that
/// it goes on whatever becomes of the list and of the selection.
class RecordingDownloads : public QObject
{
    Q_OBJECT

public:
    RecordingDownloads(const Hub& hub, ListWidget& list, DownloadList& view);
    ~RecordingDownloads() override;

    /// Asks where to save the recordings of `rows`, then downloads them side by side. The question
    /// blocks, serving events.
    void ask(const QList<QListWidgetItem*>& rows);
    bool isIdle() const { return m_jobs.empty(); }

private:
    struct Job {
        std::unique_ptr<Item> recording;
        DownloadRow* row; ///< owned by the view
    };

    QString chooseFolder();
    bool isRunning(const Item& recording) const;
    void start(std::unique_ptr<Item> recording, const QString& folder);
    void end(Item* recording, const DownloadResult& result);
    void tell();

    const Hub m_hub;
    ListWidget& m_list;
    DownloadList& m_view;
    std::vector<Job> m_jobs;
    QStringList m_completed; ///< paths nobody has been told of yet
    QStringList m_failed;    ///< messages nobody has been told of yet
    bool m_telling = false;
};
