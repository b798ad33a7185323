// SPDX-License-Identifier: MIT
#include "device/spark_thread.h"

#include "common/platform.h"
#include "device/sweep_plan.h"

#include <QDeadlineTimer>
#include <QDebug>
#include <QHostAddress>
#include <QNetworkInterface>
#include <QProcess>
#include <QTimer>

#include <functional>

namespace
{

constexpr int pauseMs = 5000;
constexpr int endMs = 500;
constexpr int blocksAtOnce = 4;
/// A check asks at most three times 200 ms per address; longer than this, the tool hangs.
constexpr int checkLimitMs = 60000;

void startTool(QProcess& process, const QString& fping, const QString& arguments)
{
    process.setReadChannel(QProcess::StandardOutput);
    process.setStandardErrorFile(QProcess::nullDevice());
    // Looked for each time: it may be installed, or updated, while the program runs.
    process.start(Platform::fpingPath(fping), QProcess::splitCommand(arguments),
                  QIODevice::ReadWrite);
}

/// All are asked to end before any is waited for: together they take no longer than one.
void endTools(const QList<QProcess*>& processes)
{
    for (QProcess* process : processes) {
        process->disconnect();
        Platform::askToEnd(process);
    }
    const QDeadlineTimer patience(endMs);
    for (QProcess* process : processes) {
        if (process->state() != QProcess::NotRunning)
            process->waitForFinished(int(patience.remainingTime()));
        if (process->state() != QProcess::NotRunning)
            process->kill();
    }
    for (QProcess* process : processes) {
        if (process->state() != QProcess::NotRunning)
            process->waitForFinished(endMs);
    }
}

/// All runs of the endless search. Lives on the search thread's stack, with its child processes.
class Search : public QObject
{
public:
    using Report = std::function<void(const QStringList&)>;

    Search(const SweepSettings& settings, Report report)
        : m_settings(settings), m_report(std::move(report))
    {
        lookForNetworks();
    }

    ~Search() override { endTools(findChildren<QProcess*>()); }

private:
    /// A network that shows up later is swept within one pause; one that goes keeps its run.
    void lookForNetworks()
    {
        if (m_settings.subnets.isEmpty()) {
            const QStringList addresses = localAddresses();
            for (const QString& address : addresses)
                sweep(address, sweepRuns(address));
        }
        for (const QString& block : m_settings.subnets)
            sweep(block, blockRun(blockAddress(block)));
        QTimer::singleShot(pauseMs, this, [this] { lookForNetworks(); });
    }

    void sweep(const QString& network, const QVector<SweepStep>& runs)
    {
        if (m_started.contains(network))
            return;
        m_started << network;
        for (const SweepStep& step : runs)
            begin(step);
    }

    void begin(const SweepStep& step)
    {
        QProcess* process = Platform::newTool(this);
        process->setProperty("ip1", step.ip1);
        process->setProperty("ip2", step.ip2);
        process->setProperty("v", step.v);
        process->setProperty("min", step.min);
        process->setProperty("max", step.max);
        auto lines = std::make_shared<LineAssembler>();
        connect(process, &QProcess::readyReadStandardOutput, this,
                [this, process, lines] { report(lines->add(process->readAllStandardOutput())); });
        connect(process, &QProcess::stateChanged, this,
                [this, process, lines](QProcess::ProcessState state) {
                    if (state != QProcess::NotRunning)
                        return;
                    report(lines->add(process->readAllStandardOutput()));
                    report(lines->rest());
                    advance(process);
                });
        startTool(*process, m_settings.fping, step.arguments());
    }

    void advance(QProcess* ended)
    {
        const auto number = [ended](const char* name) { return ended->property(name).toInt(); };
        const SweepStep next =
            SweepStep{number("ip1"), number("ip2"), number("v"), number("min"), number("max")}
                .next();
        ended->deleteLater();
        // Never begun from inside the handler: a tool that cannot start ends within start().
        QTimer::singleShot(next.afterPause ? pauseMs : 0, this, [this, next] { begin(next); });
    }

    void report(const QStringList& lines) const
    {
        if (!lines.isEmpty())
            m_report(lines);
    }

    const SweepSettings& m_settings;
    const Report m_report;
    QStringList m_started;
};

/// The tool has ended by itself, having asked everybody: it says so with 0, 1 and 2.
bool hasRun(const QProcess& process)
{
    const bool hasEnded =
        process.error() != QProcess::FailedToStart && process.exitStatus() == QProcess::NormalExit;
    if (hasEnded && process.exitCode() <= 2)
        return true;
    qWarning() << process.program() << "could not ask:" << process.errorString()
               << process.exitCode();
    return false;
}

/// One check, in blocks some of which are asked at a time. Lives as Search does.
class Check : public QObject
{
public:
    /// Hears, once, who has answered, and whether everybody was asked.
    using Report = std::function<void(const QStringList& alive, bool isConclusive)>;

    Check(QString fping, const QStringList& ips, Report report)
        : m_fping(std::move(fping)), m_report(std::move(report)), m_waiting(checkBlocks(ips))
    {
        if (m_waiting.isEmpty())
            QTimer::singleShot(0, this, [this] { m_report({}, true); });
        QTimer::singleShot(checkLimitMs, this, [this] { giveUp(); });
        for (int n = 0; n < blocksAtOnce; ++n)
            askNext();
    }

    ~Check() override { endTools(findChildren<QProcess*>()); }

private:
    void askNext()
    {
        if (m_waiting.isEmpty())
            return;
        QProcess* process = Platform::newTool(this);
        ++m_running;
        connect(process, &QProcess::stateChanged, this,
                [this, process](QProcess::ProcessState state) {
                    if (state == QProcess::NotRunning)
                        take(process);
                });
        startTool(*process, m_fping, checkArguments(m_waiting.takeFirst()));
    }

    void take(QProcess* process)
    {
        m_alive += outputLines(QString::fromLocal8Bit(process->readAllStandardOutput()));
        m_isConclusive &= hasRun(*process);
        process->deleteLater();
        // Never begun from inside the handler: a tool that cannot start ends within start().
        QTimer::singleShot(0, this, [this] {
            askNext();
            if (--m_running == 0)
                m_report(m_alive, m_isConclusive);
        });
    }

    void giveUp()
    {
        m_isConclusive &= m_waiting.isEmpty();
        m_waiting.clear();
        const auto processes = findChildren<QProcess*>();
        for (QProcess* process : processes)
            process->kill();
    }

    const QString m_fping;
    const Report m_report;
    QVector<QStringList> m_waiting;
    QStringList m_alive;
    int m_running = 0;
    bool m_isConclusive = true;
};

} // namespace

QStringList localAddresses()
{
    QStringList texts;
    const QList<QHostAddress> addresses = QNetworkInterface::allAddresses();
    for (const QHostAddress& address : addresses) {
        const QString text = address.toString();
        if (address.protocol() == QAbstractSocket::IPv4Protocol &&
            text != QLatin1String("127.0.0.1"))
            texts << text;
    }
    return texts;
}

Spark_Thread::Spark_Thread(SweepSettings settings) : m_settings(std::move(settings))
{
    connect(this, &QThread::finished, this, &QObject::deleteLater);
}

void Spark_Thread::startFindDevice()
{
    setObjectName(QStringLiteral("findDevice"));
    setProperty("work", QStringLiteral("findDevice"));
    start(QThread::LowPriority);
}

void Spark_Thread::startRefreshDevice(const QStringList& ips)
{
    setObjectName(QStringLiteral("refreshDevice"));
    setProperty("work", QStringLiteral("refreshDevice"));
    setProperty("ips", ips);
    start(QThread::LowPriority);
}

QStringList Spark_Thread::asked() const
{
    return property("ips").toStringList();
}

void Spark_Thread::stop()
{
    quit();
    wait();
}

void Spark_Thread::run()
{
    const QString work = property("work").toString();
    if (work == QLatin1String("findDevice"))
        findDevice();
    else if (work == QLatin1String("refreshDevice"))
        refreshDevice();
}

void Spark_Thread::findDevice()
{
    const Search search(m_settings, [this](const QStringList& ips) { emit S_findDeviceIP(ips); });
    exec();
}

void Spark_Thread::refreshDevice()
{
    const Check check(m_settings.fping, asked(), [this](const QStringList& ips, bool all) {
        m_isConclusive = all;
        emit S_refreshDeviceIP(ips);
        quit();
    });
    exec();
}
