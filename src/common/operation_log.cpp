// SPDX-License-Identifier: MIT
#include "common/operation_log.h"

#include "common/data_path.h"
#include "common/limits.h"

#include <QDateTime>
#include <QFile>
#include <QMutex>
#include <QThreadPool>

#include <array>
#include <atomic>

namespace
{

QString logFilePath(const QString& key, const QString& ending)
{
    // The key may be a host name from an address; it never names another folder.
    QString name = key;
    for (QChar& c : name) {
        if (!c.isLetterOrNumber() && c != QLatin1Char('.') && c != QLatin1Char('-'))
            c = QLatin1Char('_');
    }
    return dataPath(QStringLiteral("log")) +
           QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")) + QStringLiteral("---") +
           name + ending;
}

/// The fixed set of log writers; it lives as long as the process and joins them at the end.
class Pool
{
public:
    Pool() { m_overflow.setMaxThreadCount(1); }
    ~Pool()
    {
        for (operatelog_Threads& worker : m_workers)
            worker.wait();
    }

    void write(const QString& key, const QString& line)
    {
        const int k = freeWorker();
        if (k < 0) {
            overflow(key, line);
            return;
        }
        operatelog_Threads& worker = m_workers[size_t(k)];
        worker.key = key;
        worker.text = QStringLiteral("[ID]") + QString::number(k) + QLatin1Char(' ') + line;
        worker.start(QThread::LowPriority);
    }

    QMutex fileMutex;

private:
    /// On a thread of its own: all writers are busy, so the disk may be hanging.
    void overflow(const QString& key, const QString& line)
    {
        constexpr int most = 10000;
        if (m_waiting >= most)
            return;
        ++m_waiting;
        m_overflow.start([this, key, line] {
            appendToFile(logFilePath(key, QStringLiteral("_tarn_hub_overtake.txt")),
                         line + QStringLiteral("线程数") + QString::number(0), QIODevice::Append);
            --m_waiting;
        });
    }

    /// Probes 0, then 1 to 29, 0, 1, … and gives up on the third wrap round to worker 0.
    int freeWorker() const
    {
        if (!m_workers[0].isRunning())
            return 0;
        const int count = int(m_workers.size());
        int wraps = 0;
        for (int k = 1; wraps < 3; k = (k + 1) % count) {
            if (k == 0)
                ++wraps;
            if (wraps < 3 && !m_workers[size_t(k)].isRunning())
                return k;
        }
        return -1;
    }

    std::array<operatelog_Threads, 30> m_workers;
    std::atomic<int> m_waiting{0}; // records on their way to an overflow file
    QThreadPool m_overflow;        // goes first, and with it what waits there
};

Pool& pool()
{
    static Pool instance;
    return instance;
}

} // namespace

operatelog_Threads::operatelog_Threads()
{
    setObjectName(QStringLiteral("operatelog"));
}

void operatelog_Threads::run()
{
    const QMutexLocker lock(&pool().fileMutex);
    appendToFile(logFilePath(key, QStringLiteral("_tarn_hub.txt")),
                 text + QStringLiteral("[iThreadCnt]") + QString::number(idealThreadCount()),
                 QIODevice::Append);
}

void writeLog(const QString& key, const QString& line)
{
    pool().write(key, line);
}

QString logClip(const QString& text)
{
    QString line = text.left(Limits::LogRecordChars);
    for (QChar& c : line) {
        const bool breaks = c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
        if (c.category() == QChar::Other_Control || breaks)
            c = QLatin1Char(' ');
    }
    if (text.size() > line.size())
        line += QStringLiteral("… (%1)").arg(text.size());
    return line;
}

QString logLine(const QString& event, const char* file, int line, const QString& function)
{
    // Joined, not filled in: the event carries text from the network that may hold "%1".
    return QLatin1Char('[') +
           QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss:zzz")) +
           QStringLiteral("][") + logClip(event) + QStringLiteral("][") + QString::fromUtf8(file) +
           QLatin1Char(':') + QString::number(line) + QLatin1Char(':') + function +
           QStringLiteral("][") + QThread::currentThread()->objectName() + QLatin1Char(']');
}

void appendToFile(const QString& path, const QString& text, QIODevice::OpenMode mode)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | mode))
        return;
    QByteArray record = text.toUtf8();
    if (mode & QIODevice::Append)
        record += '\n';
    file.write(record);
}
