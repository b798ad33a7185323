// SPDX-License-Identifier: MIT
#include "crash/crash_dumps.h"
#include "crash/crash_handler_file.h"
#include "tests/support/files.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QDateTime>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <csignal>
#include <unistd.h>

namespace
{

struct Ending {
    int signal = 0;
    qint64 ms = 0;
};

/// Lets the victim crash; no way of crashing may keep it longer than this.
Ending runVictim(const QString& folder, const QStringList& way,
                 const QString& program = CRASH_VICTIM)
{
    QProcess victim;
    victim.setProcessChannelMode(QProcess::MergedChannels);
    Stopwatch timer;
    victim.start(program, QStringList{folder} + way);
    if (!victim.waitForFinished(30000))
        return {};
    // QProcess gives the signal of a crash here.
    const bool crashed = victim.exitStatus() == QProcess::CrashExit;
    return {crashed ? victim.exitCode() : -victim.exitCode(), timer.elapsed()};
}

QString lldb()
{
    static const QString found = QStandardPaths::findExecutable("lldb");
    return found;
}

/// What the debugger says of a dump.
QString inspect(const QString& dump)
{
    QProcess debugger;
    debugger.setProcessChannelMode(QProcess::MergedChannels);
    debugger.start(lldb(),
                   {"--no-lldbinit", "--batch", "-c", dump, "-o", "thread list", "-o",
                    "thread backtrace -c 40 all", "-o", "register read --all", "-o", "image list"});
    if (!debugger.waitForFinished(60000))
        debugger.kill();
    return QString::fromUtf8(debugger.readAllStandardOutput());
}

void makeDump(const QString& path, const QDateTime& time)
{
    QFile file(writeFile(path, {}));
    QVERIFY(file.open(QIODevice::Append));
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
}

} // namespace

/// Crashes of a real process, and what a real debugger reads in the dumps.
class tst_CrashHandler : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY2(!lldb().isEmpty(), "lldb, which reads the dumps, is not installed");
    }
    void init()
    {
        m_temporary = std::make_unique<QTemporaryDir>();
        m_folder = m_temporary->path() + "/Dump/";
        QVERIFY(QDir().mkpath(m_folder));
    }

    void crashes_data()
    {
        columns<int, QString, QString>("signal", "signalName", "frames");
        const QString any("\\d+:.*");
        row("null", SIGSEGV, "SIGSEGV", any + "writeToNowhere");
        row("jump", SIGSEGV, "SIGSEGV", any + "jumpToNowhere");
        row("divide", SIGFPE, "SIGFPE", any + "divideBy");
        row("overflow", SIGSEGV, "SIGSEGV", any + "runOutOfStack");
        row("abort", SIGABRT, "SIGABRT", any + "giveUp");
#ifndef __SANITIZE_ADDRESS__ // which sees this coming
        row("heap", SIGABRT, "SIGABRT", any + "freeTwice");
#endif
        row("exception", SIGABRT, "SIGABRT", any + "throwUncaught");
        row("fatal", SIGABRT, "SIGABRT", any + "QMessageLogger::fatal");
        row("thread", SIGSEGV, "SIGSEGV", any + "writeToNowhere");
        row("thread-overflow", SIGSEGV, "SIGSEGV", any + "runOutOfStack");
        // Where the system forbids what the writer needs.
        for (const char* way :
             {"null no-trace", "null no-reading", "null no-trace no-reading", "null no-fork",
              "null writer-faults", "null no-trace no-reading no-fork"})
            row(way, SIGSEGV, "SIGSEGV", "0:.*writeToNowhere(?s:.*)frame #[1-9]:.*main");
    }
    void crashes()
    {
        const auto [signal, signalName, frames] = cells<int, QString, QString>();
        const QString dump = dumpOf(QString(QTest::currentDataTag()).split(' '), signal);
        QVERIFY(!dump.isEmpty());
        const QString view = inspect(dump);
        QVERIFY2(view.contains("stop reason = signal " + signalName), qPrintable(view));
        QVERIFY2(view.contains(QRegularExpression("frame #" + frames)), qPrintable(view));
    }

    void namesTheFile()
    {
        constexpr int ahead = 9 * 3600;
        qputenv("TZ", "KST-9");
        const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(ahead);
        const QString dump = QFileInfo(dumpOf({"null"}, SIGSEGV)).fileName();
        const QDateTime after = QDateTime::currentDateTimeUtc().addSecs(ahead);
        qunsetenv("TZ");
        const auto match =
            QRegularExpression("^TarnHub-1\\.0\\.0\\.10-(\\d{8}-\\d{6})\\.dmp$").match(dump);
        QVERIFY2(match.hasMatch(), qPrintable(dump));
        QDateTime named = QDateTime::fromString(match.captured(1), "yyyyMMdd-HHmmss");
        named.setTimeSpec(Qt::UTC);
        QVERIFY(named.isValid());
        QVERIFY2(before.secsTo(named) >= -1 && named.secsTo(after) >= 0, qPrintable(dump));
        QCOMPARE(QFile::permissions(m_folder + dump) &
                     (QFileDevice::ReadGroup | QFileDevice::ReadOther),
                 QFileDevice::Permissions());
    }

    void knowsTheCalendar()
    {
        const QDateTime last(QDate(2110, 1, 1), QTime(), Qt::UTC);
        constexpr int step = 41 * 86400 + 12347;
        for (QDateTime day(QDate(1999, 12, 31), QTime(23, 59, 59), Qt::UTC); day < last;
             day = day.addSecs(step)) {
            // Both sides of the end of the month, every time of the day.
            for (const QDateTime& time :
                 {day, QDateTime(QDate(day.date().year(), day.date().month(), 1), QTime(), Qt::UTC)
                           .addSecs(-1)}) {
                CrashFile file;
                QVERIFY(file.open(QFile::encodeName(m_folder), "x", time.toSecsSinceEpoch()));
                const QStringList files = filesIn(m_folder);
                file.discard();
                QCOMPARE(files, QStringList{time.toString("'x-'yyyyMMdd-HHmmss'.dmp.part'")});
            }
        }
    }

    void showsThreadsAndModules()
    {
        const QString view = inspect(dumpOf({"thread"}, SIGSEGV));
        // The crashed one, the main thread that waits for it, and one that sleeps.
        const auto threads =
            QRegularExpression("^[* ] thread #\\d+: tid", QRegularExpression::MultilineOption);
        int count = 0;
        for (auto found = threads.globalMatch(view); found.hasNext(); found.next())
            ++count;
        QVERIFY2(count == 3, qPrintable(view));
        QVERIFY2(view.contains("sleepForever"), qPrintable(view));
        const auto program =
            QRegularExpression("\\[ *0\\] [0-9A-F-]{41,} 0x[0-9a-f]+ .*/crash_victim");
        QVERIFY2(program.match(view).hasMatch(), qPrintable(view));
        QVERIFY2(view.contains("libQt5Core.so"), qPrintable(view));
    }

    void showsRegisters()
    {
        const QString view = inspect(dumpOf({"registers"}, SIGSEGV));
        for (const char* expected : {"r12 = 0x1122334455667788", "r13 = 0x99aabbccddeeff01",
                                     "rsi = 0x000000000000002a", "cs = 0x0000000000000033"})
            QVERIFY2(view.contains(expected), qPrintable(view));
        QVERIFY2(view.contains(
                     QRegularExpression("rip = 0x[0-9a-f]+ +crash_victim`writeWithKnownRegisters")),
                 qPrintable(view));
    }

    void endsWhenTheHandlerFails_data()
    {
        columns<QString, int, int>("failure", "signal", "limitMs");
        row("it faults itself", "handler-faults", SIGSYS, 5000);
        row("the writer hangs", "writer-hangs", SIGSEGV, 10000);
    }
    void endsWhenTheHandlerFails()
    {
        const auto [failure, signal, limitMs] = cells<QString, int, int>();
        const Ending ending = runVictim(m_folder, {"null", failure});
        QCOMPARE(ending.signal, signal);
        VERIFY_BELOW(ending.ms, limitMs);
        const QStringList files = filesIn(m_folder);
        QVERIFY2(files.filter(QRegularExpression("\\.dmp$")).isEmpty(),
                 qPrintable(files.join(' ')));
    }

    void threadsCrashingTogetherLeaveOneDump()
    {
        for (int round = 0; round < 20; ++round) {
            const Ending ending = runVictim(m_folder, {"all-at-once"});
            QCOMPARE(ending.signal, SIGSEGV);
            VERIFY_BELOW(ending.ms, 5000);
            const QStringList files = filesIn(m_folder);
            QVERIFY2(files.size() == 1 && files.first().endsWith(".dmp"),
                     qPrintable(files.join(' ')));
            QVERIFY(QFile::remove(m_folder + files.first()));
        }
    }

    void neverOverwrites()
    {
        // More crashes than seconds.
        constexpr int crashes = 6;
        for (int n = 0; n < crashes; ++n)
            QCOMPARE(runVictim(m_folder, {"null"}).signal, SIGSEGV);
        const QStringList files = filesIn(m_folder);
        QCOMPARE(files.size(), crashes);
        for (const QString& name : files) {
            QVERIFY2(name.endsWith(".dmp"), qPrintable(name));
            QVERIFY2(QFileInfo(m_folder + name).size() > 10000, qPrintable(name));
        }
    }

    void makesTheFolderAgain()
    {
        QVERIFY(QDir(m_folder).removeRecursively());
        QVERIFY(!dumpOf({"null"}, SIGSEGV).isEmpty());
    }

    void endsWithoutAPlaceToWrite()
    {
        // A file where the folder should be: not even root can write there.
        const QString blocked = writeFile(m_folder + "file", {});
        const Ending ending = runVictim(blocked + "/Dump/", {"null"});
        QCOMPARE(ending.signal, SIGSEGV);
        VERIFY_BELOW(ending.ms, 5000);
        QCOMPARE(filesIn(m_folder), QStringList{"file"});
    }

    void leavesNoHalfDumpWithoutSpace()
    {
        QCOMPARE(runVictim(m_folder, {"null", "no-space"}).signal, SIGSEGV);
        QCOMPARE(filesIn(m_folder), QStringList());
    }

    void keepsTheEnvironmentSecret()
    {
        const QByteArray secret = "open sesame " + QByteArray::number(getpid());
        qputenv("TARN_TEST_PASSWORD", secret);
        const QByteArray content = readFile(dumpOf({"null"}, SIGSEGV));
        qunsetenv("TARN_TEST_PASSWORD");
        QVERIFY(content.contains("crash_victim"));
        QVERIFY(!content.contains(secret));
    }

    void readsNamesInEveryAlphabet()
    {
        const QString names = "été 한국 中文 😀/";
        m_folder += names;
        QVERIFY(QDir().mkpath(m_folder));
        const QString program = m_temporary->path() + "/" + names + "victim";
        QVERIFY(QDir().mkpath(m_temporary->path() + "/" + names));
        QVERIFY(QFile::copy(CRASH_VICTIM, program));
        QCOMPARE(runVictim(m_folder, {"null"}, program).signal, SIGSEGV);
        const QStringList files = filesIn(m_folder);
        QCOMPARE(files.size(), 1);
        const QString view = inspect(m_folder + files.first());
        QVERIFY2(view.contains(QRegularExpression("\\[ *0\\].*" + program)), qPrintable(view));
        QVERIFY2(view.contains("victim`writeToNowhere"), qPrintable(view));
    }

    void keepsTheNewest()
    {
        const QDateTime now = QDateTime::currentDateTime();
        for (int age = 0; age < 14; ++age)
            makeDump(m_folder + QString("TarnHub-1.0.0.%1-20260101-000000.dmp").arg(age),
                     now.addDays(-age));
        makeDump(m_folder + "TarnHub-1.0.0.10-20260101-000001.dmp.part", now.addDays(-1));
        makeDump(m_folder + "TarnHub-1.0.0.10-20260101-000002.dmp.part", now);
        makeDump(m_folder + "notes.txt", now.addDays(-100));
        CrashDumps::prune(m_folder);
        QStringList expected{"TarnHub-1.0.0.10-20260101-000002.dmp.part", "notes.txt"};
        for (int age = 0; age < 10; ++age)
            expected << QString("TarnHub-1.0.0.%1-20260101-000000.dmp").arg(age);
        expected.sort();
        QCOMPARE(filesIn(m_folder), expected);
    }

    void tellsOfEachDumpOnce()
    {
        const QDateTime now = QDateTime::currentDateTime();
        const QString first = "TarnHub-1.0.0.10-20260101-000000.dmp";
        const QString second = "TarnHub-1.0.0.10-20260101-000000-2.dmp";
        QCOMPARE(CrashDumps::takeNew(m_folder), QStringList());
        makeDump(m_folder + first, now.addSecs(-5));
        QCOMPARE(CrashDumps::takeNew(m_folder), QStringList{first});
        QCOMPARE(CrashDumps::takeNew(m_folder), QStringList());
        // A clock that was put back hides nothing, and a dump that is gone makes nothing new.
        makeDump(m_folder + second, now.addDays(-300));
        QVERIFY(QFile::remove(m_folder + first));
        QCOMPARE(CrashDumps::takeNew(m_folder), QStringList{second});
        QCOMPARE(CrashDumps::takeNew(m_folder), QStringList());
        QCOMPARE(CrashDumps::takeNew(m_folder + "missing/"), QStringList());
    }

private:
    /// Crashes this way and returns the only file left.
    QString dumpOf(const QStringList& way, int signal)
    {
        const Ending ending = runVictim(m_folder, way);
        const QStringList files = filesIn(m_folder);
        if (ending.signal != signal || files.size() != 1) {
            qWarning("ended by %d with the files: %s", ending.signal, qPrintable(files.join(' ')));
            return {};
        }
        return m_folder + files.first();
    }

    std::unique_ptr<QTemporaryDir> m_temporary;
    QString m_folder;
};

QTEST_GUILESS_MAIN(tst_CrashHandler)
#include "tst_crash_handler.moc"
