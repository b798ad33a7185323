// SPDX-License-Identifier: MIT
#include "device/spark_thread.h"

#include "device/sweep_plan.h"

#include <QDebug>
#include <QHostAddress>
#include <QNetworkInterface>
#include <QProcess>
#include <QTimer>

#include <functional>

namespace
{

constexpr int pauseMs = 5000;
/// A check asks at most three times 200 ms per address; longer than this, the tool hangs.
constexpr int checkLimitMs = 60000;

void startTool(QProcess& process, const QString& fping, const QString& arguments)
{
    process.setReadChannel(QProcess::StandardOutput);
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(fping, QProcess::splitCommand(arguments), QIODevice::ReadWrite);
}

void endTool(QProcess& process)
{
    process.disconnect();
    process.terminate();
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(500)) {
        process.kill();
        process.waitForFinished(500);
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

    ~Search() override
    {
        const auto processes = findChildren<QProcess*>();
        for (QProcess* process : processes)
            endTool(*process);
    }

private:
    /// A network that shows up later is swept within one pause; one that goes keeps its run.
    void lookForNetworks()
    {
        QStringList addresses;
        if (m_settings.subnets.isEmpty())
            addresses = localAddresses();
        for (const QString& block : m_settings.subnets)
            addresses << blockAddress(block);
        for (const QString& address : qAsConst(addresses)) {
            if (m_started.contains(address))
                continue;
            m_started << address;
            const QVector<SweepStep> runs = sweepRuns(address);
            for (const SweepStep& step : runs)
                begin(step);
        }
        QTimer::singleShot(pauseMs, this, [this] { lookForNetworks(); });
    }

    void begin(const SweepStep& step)
    {
        auto* process = new QProcess(this);
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
    QProcess process;
    connect(&process, &QProcess::stateChanged, &process,
            [this, &process](QProcess::ProcessState state) {
                if (state != QProcess::NotRunning)
                    return;
                m_isConclusive = hasRun(process);
                emit S_refreshDeviceIP(
                    outputLines(QString::fromLocal8Bit(process.readAllStandardOutput())));
                quit();
            });
    QTimer::singleShot(checkLimitMs, &process, [&process] { process.kill(); });
    startTool(process, m_settings.fping, checkArguments(asked()));
    // A tool that cannot start has already been reported, and quit() before exec() is honoured.
    exec();
    endTool(process);
}
