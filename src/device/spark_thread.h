// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QThread>

#include <atomic>

/// What every sweep of this run of the program is told.
struct SweepSettings {
    QString fping;       ///< the ping-sweep tool to use; empty: the one that is there
    QStringList subnets; ///< blocks "a.b.c.0/24" to sweep; empty: the computer's own networks
    /// A box may be given another name on its own page: so often it is asked for it, in
    /// milliseconds.
    int namePauseMs = 60000;
};

/// The thread that pings: an endless search for live addresses, or one check of known ones. It
/// talks to no box; it only reports what the sweep tool prints.
///
/// A thread object frees itself when its run has ended. Whoever starts one ends it with stop().
/// Connect to the signals with queued connections.
class Spark_Thread : public QThread
{
    Q_OBJECT

public:
    explicit Spark_Thread(SweepSettings settings);

    /// Searches until stop(). An address is reported as soon as the tool prints it.
    void startFindDevice();
    /// Asks `ips` once, then ends.
    void startRefreshDevice(const QStringList& ips);
    /// The addresses of the check, and its place in the order in which checks began: 1, 2, ….
    QStringList asked() const;
    int order() const { return m_order; }
    void setOrder(int order) { m_order = order; }
    /// The tool has asked all of them, so that whoever did not answer is not there. Known once the
    /// check has reported.
    bool isConclusive() const { return m_isConclusive; }
    /// Ends the run and its child processes and waits for that; takes a few milliseconds.
    void stop();

signals:
    void S_findDeviceIP(QStringList ips);
    /// The addresses of the check that answered; empty when the tool could not run.
    void S_refreshDeviceIP(QStringList ips);

protected:
    void run() override;

private:
    void findDevice();
    void refreshDevice();

    const SweepSettings m_settings;
    int m_order = 0;
    std::atomic<bool> m_isConclusive{false};
};

/// The computer's own IPv4 addresses, without 127.0.0.1, in the system's order.
QStringList localAddresses();
