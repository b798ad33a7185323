// SPDX-License-Identifier: MIT
#include "device/recording_download.h"

#include "common/safe_name.h"

RecordingDownload::RecordingDownload(const QString& folder, const QString& name)
    : m_folder(folder), m_name(safeFileName(name))
{
}

RecordingDownload::~RecordingDownload()
{
    if (!m_part.fileName().isEmpty())
        m_part.remove();
}

bool RecordingDownload::begin()
{
    m_path = freePath(m_folder, m_name);
    m_part.setFileName(m_path + partSuffix());
    if (m_part.open(QIODevice::NewOnly | QIODevice::WriteOnly)) {
        m_part.close();
        return true;
    }
    m_part.setFileName(QString());
    return false;
}

void RecordingDownload::feed(const QByteArray& report)
{
    m_report.feed(report);
    m_silentReports = m_report.isFlowing() ? 0 : m_silentReports + 1;
}

DownloadProgress RecordingDownload::progress() const
{
    return {m_report.percent(), m_report.received(), m_report.total()};
}

DownloadResult RecordingDownload::finish(const QProcess& curl)
{
    const QString reason = problem(curl);
    if (!reason.isEmpty())
        return fail(reason);
    if (!giveName())
        return fail(tr("无法写入文件"));
    return {true, m_path, QString()};
}

/// Empty when the whole file has come.
QString RecordingDownload::problem(const QProcess& curl) const
{
    enum CurlCode { CannotConnect = 7, Partial = 18, CannotWrite = 23, NoReply = 52, Broken = 56 };
    if (curl.error() == QProcess::FailedToStart)
        return tr("无法启动下载程序");
    if (curl.exitStatus() == QProcess::NormalExit && curl.exitCode() == 0) {
        if (m_report.httpStatus() == 404)
            return tr("设备上没有此文件");
        if (m_report.httpStatus() < 200 || m_report.httpStatus() > 299)
            return tr("设备回应错误 ") + QString::number(m_report.httpStatus());
        return QString();
    }
    switch (curl.exitCode()) {
    case CannotConnect:
        return tr("无法连接设备");
    case Partial:
    case NoReply:
    case Broken:
        return tr("传输中断,文件不完整");
    case CannotWrite:
        return tr("无法写入文件");
    default:
        return m_report.error().isEmpty() ? tr("下载程序异常结束") : m_report.error();
    }
}

/// Renaming never replaces a file; one that came in the meantime makes us take another name.
bool RecordingDownload::giveName()
{
    constexpr int attempts = 3;
    for (int n = 0; n < attempts; ++n) {
        if (m_part.rename(m_path)) {
            m_part.setFileName(QString());
            return true;
        }
        m_path = freePath(m_folder, m_name);
    }
    return false;
}
