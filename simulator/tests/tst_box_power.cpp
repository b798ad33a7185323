// SPDX-License-Identifier: MIT
#include "tests/support/box_client.h"
#include "tests/support/files.h"
#include "tests/support/plugged_box.h"
#include "tests/support/stopwatch.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <csignal>

#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace sim;

namespace
{
constexpr int rebootMs = 400;
const char* const home = TEST_BLOCK ".1";
} // namespace

/// A box that comes, goes, changes its firmware and moves.
class tst_BoxPower : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_box.reset();
        m_box = pluggedBox(home, rebootMs);
        QCoreApplication::processEvents(); // the signal of that is none of the tests' business
    }

    void firmwareChange()
    {
        QSignalSpy reachable(m_box.get(), &VirtualBox::reachableChanged);
        QCOMPARE(writeParameter(home, "eParam_SDIVolume", "31").status(), "set success");
        QCOMPARE(upload(home, writePackage(m_dir.filePath("KORA_9.8.7.6.dat"), 8)).status(),
                 "success");
        QVERIFY(m_box->parameter("eParam_FirmVersion") != "9.8.7.6"); // only an upload so far
        Stopwatch away;
        QCOMPARE(command(home, "ota").status(), "success");
        QTRY_COMPARE(reachable.size(), 1);
        QVERIFY(isRefused(home, 8081));
        QTRY_COMPARE(reachable.size(), 2);
        QVERIFY2(away.elapsed() >= rebootMs - 20, qPrintable(QString::number(away.elapsed())));
        QCOMPARE(valueOf(home, "eParam_FirmVersion"), "9.8.7.6");
        QCOMPARE(valueOf(home, "eParam_SDIVolume"), "31");
        QCOMPARE(m_box->activity().reboots, 1);
    }

    void rebootKeepsSettings()
    {
        QCOMPARE(writeParameter(home, "eParam_NTPServer", "time.example").status(), "set success");
        QCOMPARE(command(home, "hxdec_on&ndi_name='A (B)'").status(), "success");
        QCOMPARE(command(home, "reboot").status(), "success");
        QTRY_VERIFY(!m_box->isReachable());
        QTRY_VERIFY(m_box->isOn());
        QCOMPARE(valueOf(home, "eParam_NTPServer"), "time.example");
        QCOMPARE(m_box->activity().decodeSource, ""); // what ran runs no more
    }

    void restartStaysReachable()
    {
        QSignalSpy reachable(m_box.get(), &VirtualBox::reachableChanged);
        QCOMPARE(command(home, "restart").status(), "success");
        QTRY_VERIFY(!m_box->isOn());
        QVERIFY(isRefused(home, 8081));
        QTRY_VERIFY(m_box->isOn());
        QCOMPARE(reachable.size(), 0);
        QCOMPARE(m_box->activity().restarts, 1);
    }

    void fixedAddressCountsAfterReboot()
    {
        const QString fixed = TEST_BLOCK ".77";
        QCOMPARE(writeParameter(home, "eParam_IPAddress", fixed).status(), "set success");
        QCOMPARE(writeParameter(home, "eParam_DHCP", "0").status(), "set success");
        QCOMPARE(command(home, "restart").status(), "success");
        QTRY_COMPARE(m_box->address(), fixed);
        QTRY_VERIFY(m_box->isOn());
        QVERIFY(isRefused(home, 8081));
        QCOMPARE(writeParameter(fixed, "eParam_DHCP", "1").status(), "set success");
        QCOMPARE(command(fixed, "reboot").status(), "success");
        QTRY_COMPARE(m_box->address(), home);
        QTRY_VERIFY(m_box->isOn());
    }

    void unpluggingIsQuickAndFinal()
    {
        QVERIFY(m_box->addFault("silent"));
        QTcpSocket idle; // says nothing at all
        idle.connectToHost(home, 8081);
        QVERIFY(idle.waitForConnected());
        QTcpSocket waiting;
        waiting.connectToHost(home, 8081);
        waiting.write("GET /config?action=get&param_name=eParam_DHCP HTTP/1.1\r\nHost: x\r\n\r\n");
        QTRY_COMPARE(m_box->requests().size(), 1);

        Stopwatch clock;
        m_box->unplug();
        VERIFY_BELOW(clock.elapsed(), 100);
        for (const quint16 port : {8081, 8001, 8002})
            QVERIFY(isRefused(home, port));
        QTRY_COMPARE(idle.state(), QAbstractSocket::UnconnectedState);
        QTRY_COMPARE(waiting.state(), QAbstractSocket::UnconnectedState);
        QVERIFY(!m_box->isReachable());
        m_box->clearFaults();
        QVERIFY(m_box->plugIn());
        QCOMPARE(readParameter(home, "eParam_DHCP").exitCode, 0);
    }

#ifdef Q_OS_UNIX
    /// A program that is just being started has copies of all that is open.
    void startingProgramHoldsNoPort()
    {
        const pid_t copy = ::fork();
        if (copy == 0) {
            ::pause();
            ::_exit(0);
        }
        m_box->unplug();
        const bool isBack = m_box->plugIn();
        ::kill(copy, SIGKILL);
        ::waitpid(copy, nullptr, 0);
        QVERIFY2(isBack, qPrintable(m_box->errorString()));
    }
#endif

    void unpluggedDuringReboot()
    {
        QSignalSpy reachable(m_box.get(), &VirtualBox::reachableChanged);
        QCOMPARE(command(home, "reboot").status(), "success");
        QTRY_COMPARE(reachable.size(), 1);
        m_box->unplug();
        QVERIFY(!reachable.wait(rebootMs + 200)); // does not come back by itself
        QVERIFY(!m_box->isReachable());
    }

    void takenPortIsAnError()
    {
        VirtualBox other(home);
        QVERIFY(!other.plugIn());
        QVERIFY2(other.errorString().contains(TEST_BLOCK ".1:8081"),
                 qPrintable(other.errorString()));
        QVERIFY(!other.isReachable());
        QCOMPARE(readParameter(home, "eParam_DHCP").exitCode, 0); // the first one is unharmed
    }

    void staysOnLoopback()
    {
        for (const char* address : {"0.0.0.0", "10.0.0.1", "::1", "box", ""}) {
            VirtualBox box(QString::fromLatin1(address));
            QVERIFY2(!box.plugIn(), address);
            QVERIFY(!m_box->moveTo(QString::fromLatin1(address)));
        }
        QVERIFY(m_box->isOn());
    }

private:
    std::unique_ptr<VirtualBox> m_box;
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_BoxPower)
#include "tst_box_power.moc"
