// SPDX-License-Identifier: MIT
#pragma once

#include "common/command_runner.h"
#include "common/curl_report.h"
#include "common/limits.h"
#include "common/loose_queue.h"
#include "device/part_file.h"

#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

/// How far a download has come.
struct DownloadProgress {
    qint64 received = 0; ///< bytes
    qint64 total = -1;   ///< bytes; -1 while unknown
    bool broken = false; ///< the transfer has broken off; it goes on after a pause
};

/// How a download has ended.
struct DownloadResult {
    bool succeeded = false;
    QString path;      ///< where the whole file lies, or would have
    QString reason;    ///< why there is none, to be shown; empty when it succeeded or was cancelled
    bool kept = false; ///< what has come stays for a later try
};

/// How long a download that has broken off is tried again, pauses doubling.
struct DownloadPatience {
    int pauseMs = 1000;
    int longestPauseMs = 30000;
    int tries = 8;          ///< that bring nothing, before it gives up: some two minutes
    int silentReports = 30; ///< about one a second, before a transfer counts as broken off
    int quietMs = 2000;     ///< that an earlier run's part must not have grown for
    qint64 reserve = Limits::DownloadReserveBytes; ///< of the disk
};

/// The download of one recording: curl, started again where the transfer broke off, until the file
/// has the length that the box has told. What has come is kept unless the operator cancels. Before
/// each start the address is asked who is there, if the source names its box: what another box has
/// under the same name is another recording.
class RecordingDownload : public QObject
{
    Q_OBJECT

public:
    /// `folder` ends in "/"; what `source` names comes from a box.
    RecordingDownload(const QString& folder, const RecordingSource& source,
                      const DownloadPatience& patience = {}, QObject* parent = nullptr);
    /// Ends the transfer and keeps what has come. Waits a moment for the disk.
    ~RecordingDownload() override;

    /// Ends in ended(), later, also when the disk hangs.
    void start();
    /// Ends the download and removes what has come; ended() follows.
    void cancel();

signals:
    void progressed(const DownloadProgress& progress);
    void ended(const DownloadResult& result);

private:
    /// What an attempt has come to.
    enum class Outcome {
        Whole,
        Changed, ///< the box has another recording under this name now
        NoRange, ///< the box sends recordings only from their beginning
        Broken,
        Failed, ///< trying again would not help
    };

    /// How a process has ended.
    struct Exit {
        bool hasStarted = true;
        bool isNormal = true;
        int code = 0;
    };
    using Next = void (RecordingDownload::*)();

    void wire(QProcess* process);
    void onPart(std::function<bool(PartFile&)> work, Next next);
    void look(Next next);
    void takeUp();
    void goOn();
    void goOnUnlessItGrew();
    void attempt();
    void noteWho(const QVariantMap& answer);
    void transfer();
    void read();
    void noteLength();
    void lookForRoom();
    void stopWithoutRoom();
    void stop();
    void endAttempt(const QProcess& curl);
    void decide();
    Outcome judge() const;
    QString problem() const;
    bool mayGoOn();
    int retryPauseMs() const;
    void pauseUnlessFull();
    void pause(int ms);
    void discard();
    void finish();
    void fail(const QString& reason);
    void endFailed();
    void giveUpDisk();

    const RecordingSource m_source;
    const DownloadPatience m_patience;
    CommandRunner m_runner;
    QPointer<QProcess> m_process;
    QTimer m_pause;
    QString m_question; ///< who is there: its id, while it is unanswered

    // The part, which only the pieces of work in the queue touch.
    std::shared_ptr<PartFile> m_part;
    LooseQueue m_disk;
    QTimer m_diskLimit;
    bool m_isStopping = false; ///< curl has been told to end
    int m_pieces = 0;          ///< that the disk has not done
    int m_turn = 0;            ///< what was begun in an earlier one has been given up
    PartState m_now;           ///< of the part, when the last piece was done
    bool m_isDone = true;      ///< the last piece did what it was to do

    // The attempt that runs.
    CurlReport m_report;
    Exit m_exit;
    qint64 m_offset = 0; ///< what had come before it
    bool m_changed = false;
    bool m_stalled = false;
    bool m_isFull = false;     ///< it would take the last of the disk
    bool m_unanswered = false; ///< nobody has said who is there

    qint64 m_lastSize = 0; ///< of the part, when the pause began
    qint64 m_farthest = 0; ///< the most that any attempt has brought
    int m_fruitless = 0;   ///< attempts since then
    bool m_cancelled = false;
    QString m_reason; ///< why it fails
    bool m_isKept = false;
};
