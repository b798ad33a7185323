// SPDX-License-Identifier: MIT
#include "common/operation_log.h"

#include "common/limits.h"
#include "common/log_budget.h"
#include "common/log_folder.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QMutex>
#include <QThreadPool>

#include <array>
#include <atomic>

namespace
{

QString noteLine(const QString& event, int line, const char* function)
{
    return logLine(event, "src/common/operation_log.cpp", line, QString::fromLatin1(function));
}

/// The fixed set of log writers; it lives as long as the process.
class Pool
{
public:
    Pool()
    {
        m_clock.start();
        m_overflow.setMaxThreadCount(1);
    }

    void write(const QString& key, const QString& line)
    {
        const auto verdict = m_budget.take(key, line.size() * 2, m_clock.elapsed());
        if (verdict.isFirstLeftOut)
            hand(key, noteLine(QStringLiteral("日志过多,以下记录略去"), __LINE__, "writeLog"));
        if (verdict.leftOut > 0) {
            const QString text = QStringLiteral("日志过多,已略去 %1 条记录").arg(verdict.leftOut);
            hand(key, noteLine(text, __LINE__, "writeLog"));
        }
        if (verdict.mayWrite)
            hand(key, line);
    }

    bool flush(int ms)
    {
        const QDeadlineTimer limit(ms);
        bool all = true;
        for (operatelog_Threads& worker : m_workers)
            all = worker.wait(limit) && all;
        return m_overflow.waitForDone(int(limit.remainingTime())) && all;
    }

    QMutex fileMutex;
    LogFolder folder;

private:
    void hand(const QString& key, const QString& line)
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

    /// On a thread of its own: all writers are busy, so the disk may be hanging.
    void overflow(const QString& key, const QString& line)
    {
        const qint64 bytes = line.size() * 2;
        if (m_waiting + bytes > Limits::LogWaitingBytes) {
            ++m_dropped;
            return;
        }
        m_waiting += bytes;
        m_overflow.start([this, key, line, bytes] {
            m_waiting -= bytes;
            appendOverflow(key, line);
            const int dropped = m_dropped.exchange(0);
            if (dropped > 0)
                appendOverflow(key, noteLine(QStringLiteral("磁盘太慢,略去 %1 条记录").arg(dropped),
                                             __LINE__, "overflow"));
        });
    }

    void appendOverflow(const QString& key, const QString& line)
    {
        folder.append(key, QStringLiteral("_tarn_hub_overtake"),
                      line + QStringLiteral("线程数") + QString::number(0));
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

    QElapsedTimer m_clock;
    LogBudget m_budget;
    std::array<operatelog_Threads, 30> m_workers;
    std::atomic<qint64> m_waiting{0}; // bytes on their way to an overflow file
    std::atomic<int> m_dropped{0};
    QThreadPool m_overflow; // goes first, and with it what waits there
};

Pool*& pool()
{
    static Pool* instance = new Pool;
    return instance;
}

/// Ends the writers with the process; those that a disk holds are left to the system.
class PoolEnd
{
public:
    ~PoolEnd()
    {
        constexpr int patienceMs = 500;
        if (pool()->flush(patienceMs)) {
            delete pool();
            pool() = nullptr;
        }
    }
};

} // namespace

operatelog_Threads::operatelog_Threads()
{
    setObjectName(QStringLiteral("operatelog"));
}

void operatelog_Threads::run()
{
    Pool* const all = pool();
    const QMutexLocker lock(&all->fileMutex);
    all->folder.append(key, QStringLiteral("_tarn_hub"),
                       text + QStringLiteral("[iThreadCnt]") + QString::number(idealThreadCount()));
}

void writeLog(const QString& key, const QString& line)
{
    static const PoolEnd end;
    if (pool())
        pool()->write(key, line);
}

bool flushLog(int ms)
{
    return !pool() || pool()->flush(ms);
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

bool appendToFile(const QString& path, const QString& text, QIODevice::OpenMode mode)
{
    QFile file(path);
    const bool isNew = !file.exists();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered | mode))
        return false;
    const qint64 before = file.size();
    // Whatever else has this name is not ours to change.
    if (isNew)
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    QByteArray record = text.toUtf8();
    if (mode & QIODevice::Append)
        record += '\n';
    if (file.write(record) == record.size())
        return true;
    // Half a record would spoil the next one, too.
    file.resize(before);
    return false;
}
