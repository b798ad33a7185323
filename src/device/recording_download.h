// SPDX-License-Identifier: MIT
#pragma once

#include "common/curl_report.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QString>

/// How far a download has come.
struct DownloadProgress {
    int percent = -1; ///< 0 to 100; -1 while unknown
    QString received; ///< "1.2G"; empty while unknown
    QString total;
};

/// How a download has ended.
struct DownloadResult {
    bool succeeded = false;
    QString path;   ///< where the whole file lies, or would have
    QString reason; ///< why there is none, to be shown; empty when it succeeded or was cancelled
};

/// The files of one download: the data comes into "<name>.part", which gets its name once it is
/// whole. No file that was there before is touched, and no half file stays when this object goes.
class RecordingDownload
{
    Q_DECLARE_TR_FUNCTIONS(RecordingDownload)
    Q_DISABLE_COPY(RecordingDownload)

public:
    /// `folder` ends in "/"; `name` comes from a box.
    RecordingDownload(const QString& folder, const QString& name);
    ~RecordingDownload();

    /// Makes the empty ".part"; false when the folder takes no files.
    bool begin();
    QString partPath() const { return m_part.fileName(); }
    QString path() const { return m_path; }

    /// What curl has written on its error output.
    void feed(const QByteArray& report);
    DownloadProgress progress() const;
    /// True once curl has said so for as long as a box may be silent.
    bool isStalled() const { return m_silentReports >= SilentReportsLimit; }

    /// curl has ended: keeps the file or says what went wrong.
    DownloadResult finish(const QProcess& curl);
    /// For a download that was ended for `reason`; empty: the operator did.
    DownloadResult fail(const QString& reason) const { return {false, m_path, reason}; }

private:
    /// curl reports about once a second.
    static constexpr int SilentReportsLimit = 30;

    QString problem(const QProcess& curl) const;
    bool giveName();

    const QString m_folder;
    const QString m_name;
    QString m_path;
    QFile m_part;
    CurlReport m_report;
    int m_silentReports = 0;
};
