// SPDX-License-Identifier: MIT
#include "tests/support/files.h"
#include "tests/support/process.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"
#include "ui/window/one_instance.h"

#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>

using Outcome = OneInstance::Outcome;

/// Who has a data folder, with programs that are killed or hang in it.
class tst_OneInstance : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_data = std::make_unique<QTemporaryDir>(); }
    void cleanup()
    {
        m_holder.kill();
        m_holder.waitForFinished();
    }

    void secondCallsTheFirst()
    {
        OneInstance first(folder());
        QCOMPARE(first.claim(), Outcome::First);
#ifdef Q_OS_UNIX // elsewhere no file stands for it
        QCOMPARE(QFile(folder() + "instance").permissions() &
                     (QFile::ReadGroup | QFile::WriteOther),
                 QFile::Permissions());
#endif
        QSignalSpy called(&first, &OneInstance::called);
        hold();
        QTRY_COMPARE(m_holder.state(), QProcess::NotRunning);
        QCOMPARE(m_holder.exitCode(), int(Outcome::Told));
        QCOMPARE(called.size(), 1);
        const QTemporaryDir elsewhere;
        QCOMPARE(OneInstance(elsewhere.path() + "/").claim(0), Outcome::First);
    }

    /// Whoever connects, and whatever he sends, gets nothing else of it.
    void talkersAreNotHeard()
    {
        OneInstance first(folder());
        QCOMPARE(first.claim(), Outcome::First);
        QSignalSpy called(&first, &OneInstance::called);
        QLocalSocket talker;
        talker.connectToServer(first.names().first());
        talker.write(QByteArray(8 << 20, 'x'));
        QTRY_COMPARE(talker.state(), QLocalSocket::UnconnectedState);
        QCOMPARE(called.size(), 1);
    }

    void leftLocksHoldNobodyUp_data()
    {
        columns<QByteArray>("left");
        const QByteArray name =
            QFileInfo(QCoreApplication::applicationFilePath()).fileName().toUtf8();
        const QByteArray self = QByteArray::number(QCoreApplication::applicationPid());
        const QByteArray host = QSysInfo::machineHostName().toUtf8();
        row("by a killed program", QByteArray());
        row("with the number of this one", self + "\n" + name + "\n" + host + "\n");
        row("of another computer", "1\n" + name + "\nelsewhere\n");
        row("empty", QByteArray("\n"));
    }
    void leftLocksHoldNobodyUp()
    {
        QFETCH(QByteArray, left);
        if (left.isEmpty()) {
            hold();
            QTRY_VERIFY(QFile::exists(folder() + "instance.lock"));
            cleanup();
        } else {
            writeFile(folder() + "instance.lock", left);
        }
        QVERIFY(QFile::exists(folder() + "instance.lock"));
        OneInstance next(folder());
        QCOMPARE(next.claim(0), Outcome::First);
        hold();
        QTRY_COMPARE(m_holder.state(), QProcess::NotRunning);
        QCOMPARE(m_holder.exitCode(), int(Outcome::Told));
    }

    void hangingProgramIsNotWaitedForLong()
    {
        hold();
        QTRY_VERIFY(QFile::exists(folder() + "instance.lock"));
        freeze(m_holder.processId());
        Stopwatch clock;
        QCOMPARE(OneInstance(folder()).claim(500), Outcome::Stuck);
        VERIFY_BELOW(clock.elapsed(), 1500);
    }

    void folderThatCannotBeWrittenHoldsNobodyUp()
    {
        QCOMPARE(OneInstance("/proc/no such folder/").claim(0), Outcome::First);
    }

    /// The program itself: the second ends and says nothing, one with another folder stays.
    void programEndsBesideItself()
    {
        m_holder.setProcessEnvironment(environment(m_data->path()));
        m_holder.start(TARN_HUB_PROGRAM, arguments());
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_data->path() + "/Tarn Hub/instance.lock"), 10000);
        QProcess second;
        second.setProcessEnvironment(environment(m_data->path()));
        second.start(TARN_HUB_PROGRAM, arguments());
        QTRY_COMPARE_WITH_TIMEOUT(second.state(), QProcess::NotRunning, 10000);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(m_holder.state(), QProcess::Running);

        const QTemporaryDir elsewhere;
        second.setProcessEnvironment(environment(elsewhere.path()));
        second.start(TARN_HUB_PROGRAM, arguments());
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(elsewhere.path() + "/Tarn Hub/instance.lock"),
                                 10000);
        QCOMPARE(second.state(), QProcess::Running);
        second.kill();
        second.waitForFinished();
    }

private:
    QString folder() const
    {
        return m_data->path() + "/";
    }
    /// Another program of this kind, which keeps the folder if it is the first.
    void hold()
    {
        m_holder.start(QCoreApplication::applicationFilePath(), {"hold", folder()});
    }

    static QStringList arguments()
    {
        return {"-session", "1",       "--subnet",        TEST_BLOCK ".0/24",
                "--fping",  LAN_FPING, "--update-server", "http://" TEST_BLOCK ".250:9"};
    }
    static QProcessEnvironment environment(const QString& appData)
    {
        QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
        all.insert("APPDATA", appData);
        return all;
    }

    std::unique_ptr<QTemporaryDir> m_data;
    QProcess m_holder;
};

int main(int argc, char* argv[])
{
    if (argc == 3 && QString("hold") == argv[1]) {
        const QCoreApplication application(argc, argv);
        OneInstance instance(argv[2]);
        const Outcome outcome = instance.claim();
        return outcome == Outcome::First ? QCoreApplication::exec() : int(outcome);
    }
    const QApplication application(argc, argv);
    tst_OneInstance test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_one_instance.moc"
