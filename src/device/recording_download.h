// SPDX-License-Identifier: MIT
#pragma once

#include "common/command_runner.h"
#include "common/curl_report.h"
#include "device/part_file.h"

#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QString>
#include <QTimer>

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
};

/// The download of one recording: curl, started again where the transfer broke off, until the file
/// has the length that the box has told. What has come is kept unless the operator cancels.
class RecordingDownload : public QObject
{
    Q_OBJECT

public:
    /// `folder` ends in "/"; what `source` names comes from a box.
    RecordingDownload(const QString& folder, const RecordingSource& source,
                      const DownloadPatience& patience = {}, QObject* parent = nullptr);
    /// Ends the transfer and keeps what has come.
    ~RecordingDownload() override;

    /// Ends in ended(), at once when the folder takes no files.
    void start();
    /// Ends the download and removes what has come.
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

    void wire(QProcess* process);
    void goOn();
    void attempt();
    void read();
    void noteLength();
    void stop();
    void endAttempt(const QProcess& curl);
    Outcome judge(const QProcess& curl);
    QString problem(const QProcess& curl) const;
    bool mayGoOn();
    int retryPauseMs() const;
    void pause(int ms);
    void endCancelled();
    void finish();
    void fail(const QString& reason);

    const RecordingSource m_source;
    const DownloadPatience m_patience;
    PartFile m_part;
    CommandRunner m_runner;
    QPointer<QProcess> m_process;
    QTimer m_pause;

    // The attempt that runs.
    CurlReport m_report;
    qint64 m_offset = 0; ///< what had come before it
    bool m_changed = false;
    bool m_stalled = false;

    qint64 m_lastSize = 0; ///< of the part, when the pause began
    qint64 m_farthest = 0; ///< the most that any attempt has brought
    int m_fruitless = 0;   ///< attempts since then
    bool m_cancelled = false;
};
