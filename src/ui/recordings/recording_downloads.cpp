// SPDX-License-Identifier: MIT
#include "ui/recordings/recording_downloads.h"

#include "common/box_protocol.h"
#include "common/living_folder.h"
#include "common/platform.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/recordings/download_list.h"
#include "ui/recordings/list_widget.h"
#include "widgets/message_box.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>
#include <QStandardPaths>
#include <QTextDocument>
#include <QTimer>

#include <algorithm>

RecordingDownloads::RecordingDownloads(const Hub& hub, ListWidget& list, DownloadList& view)
    : QObject(nullptr), m_hub(hub), m_list(list), m_view(view), m_disk(QStringLiteral("parts"))
{
}

RecordingDownloads::~RecordingDownloads() = default;

void RecordingDownloads::ask(const QList<QListWidgetItem*>& rows)
{
    // Copied now: the list may be read again while the folder is chosen.
    std::vector<std::unique_ptr<Item>> recordings;
    for (const QListWidgetItem* row : rows) {
        const Item* recording = m_list.entryOf(row);
        if (!recording)
            continue;
        // A record of its own, which outlives the one in the list.
        recordings.push_back(Item::makeRecording(recording->fileName(), recording->address()));
        QString mac = recording->macAddress();
        const Item* box = m_hub.devices.model().find(recording->address());
        if (mac.isEmpty() && box)
            mac = box->macAddress();
        recordings.back()->setMacAddress(mac);
    }
    if (recordings.empty())
        return;
    const QPointer<RecordingDownloads> self(this);
    QString folder = chooseFolder();
    if (!self || folder.isEmpty())
        return;
    folder += QLatin1Char('/');
    for (auto& recording : recordings) {
        if (const Job* job = findJob(*recording, folder))
            resume(job->recording.get());
        else
            add(std::move(recording), folder);
    }
    startNext();
}

/// Empty when the operator cancels.
QString RecordingDownloads::chooseFolder()
{
    const QStringList places = QStandardPaths::standardLocations(QStandardPaths::PicturesLocation);
    if (m_isChoosing)
        return QString();
    m_isChoosing = true;
    const QPointer<RecordingDownloads> self(this);
    const QString start = livingFolder(places.value(places.size() - 1));
    if (!self)
        return QString();
    m_isChoosing = false;
    const QPointer<QFileDialog> dialog = new QFileDialog(m_hub.window, QString(), start);
    dialog->setWindowTitle(tr("请您选择保存的位置"));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setLabelText(QFileDialog::Accept, tr("选择目录"));
    dialog->setLabelText(QFileDialog::Reject, tr("取消"));
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return QString();
    const QString folder = accepted ? dialog->selectedFiles().value(0) : QString();
    dialog->setDirectory(QDir::homePath());
    dialog->deleteLater();
    return folder;
}

void RecordingDownloads::showKept()
{
    const auto parts = std::make_shared<QVector<KeptPart>>();
    m_disk.add([parts] { *parts = PartFile::kept(); }, [this, parts] { addKept(*parts); });
}

void RecordingDownloads::addKept(const QVector<KeptPart>& parts)
{
    for (const KeptPart& part : parts) {
        auto recording = Item::makeRecording(part.source.name, part.source.address);
        recording->setMacAddress(part.source.mac);
        // Begun meanwhile.
        if (findJob(*recording, part.folder))
            continue;
        Job& job = add(std::move(recording), part.folder);
        job.state = State::Kept;
        job.row->showKept();
    }
}

int RecordingDownloads::unfinished() const
{
    return int(std::count_if(m_jobs.begin(), m_jobs.end(),
                             [](const Job& job) { return job.state != State::Kept; }));
}

std::vector<RecordingDownloads::Job>::iterator RecordingDownloads::jobOf(const Item* recording)
{
    return std::find_if(m_jobs.begin(), m_jobs.end(),
                        [recording](const Job& own) { return own.recording.get() == recording; });
}

/// The job that brings the same recording into this folder; else null. Who chooses another folder
/// wants it there, too.
RecordingDownloads::Job* RecordingDownloads::findJob(const Item& recording, const QString& folder)
{
    const auto job = std::find_if(m_jobs.begin(), m_jobs.end(), [&](const Job& own) {
        return own.recording->recordingSource().isSame(recording.recordingSource()) &&
               own.folder == folder;
    });
    return job == m_jobs.end() ? nullptr : &*job;
}

RecordingDownloads::Job& RecordingDownloads::add(std::unique_ptr<Item> recording,
                                                 const QString& folder)
{
    Item* item = recording.get();
    DownloadRow* row = m_view.addRow(item->title());
    row->setToolTip(Qt::mightBeRichText(folder) ? folder.toHtmlEscaped() : folder);
    connect(item, &Item::downloadProgressed, row, &DownloadRow::setProgress);
    connect(row, &DownloadRow::cancelled, item, [this, item] { cancel(item); });
    connect(row, &DownloadRow::resumed, item, [this, item] { resume(item); });
    connect(item, &Item::downloadEnded, this,
            [this, item](const DownloadResult& result) { end(item, result); });
    m_jobs.push_back({std::move(recording), folder, row, State::Waiting});
    return m_jobs.back();
}

void RecordingDownloads::resume(const Item* recording)
{
    const auto job = jobOf(recording);
    if (job == m_jobs.end() || job->state != State::Kept)
        return;
    // Boxes change their addresses, not who they are.
    const QList<Item*> boxes = m_hub.devices.model().items(koraFamily());
    for (const Item* box : boxes) {
        // A row that it has left behind is offline.
        if (box->isOnline() && BoxProtocol::isSameMac(box->macAddress(), recording->macAddress()))
            job->recording->setAddress(box->address());
    }
    job->state = State::Waiting;
    job->row->showWaiting();
    startNext();
}

void RecordingDownloads::startNext()
{
    const auto running = std::count_if(m_jobs.begin(), m_jobs.end(),
                                       [](const Job& job) { return job.state == State::Running; });
    const auto next = std::find_if(m_jobs.begin(), m_jobs.end(),
                                   [](const Job& job) { return job.state == State::Waiting; });
    if (running >= MostAtOnce || next == m_jobs.end())
        return;
    next->state = State::Running;
    next->row->setProgress({});
    next->recording->download(next->folder);
    startNext();
}

void RecordingDownloads::cancel(Item* recording)
{
    const auto job = jobOf(recording);
    if (job == m_jobs.end())
        return;
    if (job->state == State::Running) {
        recording->cancelDownload();
        return;
    }
    m_disk.add([folder = job->folder,
                source = recording->recordingSource()] { PartFile::removeKept(folder, source); },
               nullptr);
    end(recording, {});
}

bool RecordingDownloads::mayClose()
{
    if (isIdle())
        return true;
    if (m_asksToClose)
        return false;
    m_asksToClose = true;
    const QPointer<RecordingDownloads> self(this);
    const QString text =
        tr("还有%1个录制文件没有下载完。\n已开始的下载会保留，下次启动软件后可以继续。\n"
           "确认要关闭软件吗？")
            .arg(unfinished());
    const int answer = messageBox::ask(text, m_hub.window);
    if (self)
        m_asksToClose = false;
    return answer == messageBox::Confirmed;
}

void RecordingDownloads::end(Item* recording, const DownloadResult& result)
{
    const auto job = jobOf(recording);
    if (job == m_jobs.end())
        return;
    noteResult(*recording, result);
    if (result.kept) {
        job->state = State::Kept;
        job->row->showKept();
    } else {
        m_view.removeRow(job->row);
        // It is the sender of the signal that brought us here.
        job->recording.release()->deleteLater();
        m_jobs.erase(job);
    }
    QTimer::singleShot(0, this, &RecordingDownloads::startNext);
}

void RecordingDownloads::noteResult(const Item& recording, const DownloadResult& result)
{
    if (result.succeeded)
        m_completed << result.path;
    else if (!result.reason.isEmpty())
        m_failed << BoxProtocol::fill(tr("文件[%1]下载失败：%2"),
                                      {recording.title(), result.reason});
    m_isPartKept |= result.kept;
    QTimer::singleShot(0, this, &RecordingDownloads::tell);
}

/// One dialog at a time: what ends while one is open is told together in the next.
void RecordingDownloads::tell()
{
    if (m_telling)
        return;
    m_telling = true;
    const QPointer<RecordingDownloads> self(this);
    while (self && (!m_failed.isEmpty() || !m_completed.isEmpty())) {
        if (!m_failed.isEmpty()) {
            if (m_isPartKept)
                m_failed << tr("已下载的部分会保留，可以继续下载。");
            m_isPartKept = false;
            const QString text = m_failed.join(QLatin1Char('\n'));
            m_failed.clear();
            messageBox::tell(text, m_hub.window);
            continue;
        }
        const QString path = m_completed.takeFirst();
        const QString folder = QFileInfo(path).path();
        // One question for all that went into one folder.
        for (int n = m_completed.size() - 1; n >= 0; --n) {
            if (QFileInfo(m_completed.at(n)).path() == folder)
                m_completed.removeAt(n);
        }
        const int answer = messageBox::ask(tr("下载完成,是否前往文件所在文件夹?"), m_hub.window,
                                           tr("前往"), tr("否"));
        if (answer == messageBox::Confirmed && !Platform::revealFile(path) && self)
            messageBox::tell(BoxProtocol::fill(tr("无法打开文件夹，文件保存在：%1"), {folder}),
                             m_hub.window);
    }
    if (self)
        m_telling = false;
}
