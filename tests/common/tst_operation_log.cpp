// SPDX-License-Identifier: MIT
#include "common/data_path.h"
#include "common/log_budget.h"
#include "common/log_folder.h"
#include "common/operation_log.h"
#include "tests/support/files.h"
#include "tests/support/held_file.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include <limits>
#include <memory>

class tst_OperationLog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void dataFolder();
    void recordHasItsForm();
    void noRecordIsLost_data();
    void noRecordIsLost();
    void keyNamesNoOtherFolder();
    void hangingDiskHoldsNobodyUp();
    void nobodyForgesARecord();
    void folderIsPrivateAndBounded();
    void diskIsNeverFilled();
    void floodIsLeftOut();

private:
    QString log(const QString& name) const { return dataPath("log") + name; }

    QTemporaryDir m_root;
};

void tst_OperationLog::initTestCase()
{
    QVERIFY(m_root.isValid());
    // An earlier version left its folders to everybody.
    for (const QString& folder : {m_root.filePath("Tarn Hub"), m_root.filePath("Tarn Hub/log")})
        QVERIFY(QDir().mkdir(folder) && QFile::setPermissions(folder, QFile::Permissions(0x7755)));
    // As Windows writes it.
    qputenv("APPDATA", QString(m_root.path()).replace('/', '\\').toUtf8());
}

void tst_OperationLog::dataFolder()
{
    QCOMPARE(dataPath(QString()), m_root.path() + "/Tarn Hub/");
    QCOMPARE(dataPath("a//b/c/"), m_root.path() + "/Tarn Hub/a/b/c/");
    const QDir folder(m_root.path() + "/Tarn Hub/a/b/c");
    QVERIFY(folder.exists());
    // The window's thread does not wait for the disk again; another one makes what has gone.
    QVERIFY(QDir().rmdir(folder.path()));
    QCOMPARE(dataPath("a/b/c"), folder.path() + '/');
    QVERIFY(!folder.exists());
    const std::unique_ptr<QThread> other(QThread::create([] { dataPath("a/b/c"); }));
    other->start();
    QVERIFY(other->wait(5000) && folder.exists());
}

void tst_OperationLog::recordHasItsForm()
{
    writeLog("10.0.0.1",
             logLine("123  执行Curl   curl %1 \"x\"", "src/a.cpp", 7, "Item::execCurl"));
    const QString path = logFile("10.0.0.1");
    QTRY_COMPARE(linesOf(path).size(), 1);
    const QRegularExpression form(
        "^\\[ID\\]\\d+ \\[\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d:\\d{3}\\]"
        "\\[123  执行Curl   curl %1 \"x\"\\]\\[src/a\\.cpp:7:Item::execCurl\\]\\[\\]"
        "\\[iThreadCnt\\]\\d+$");
    QVERIFY2(form.match(linesOf(path).first()).hasMatch(), qPrintable(linesOf(path).first()));
}

void tst_OperationLog::noRecordIsLost_data()
{
    columns<QString, int>("key", "count");
    row("one pool full", "burst-30", 30);
    row("far more than the pool", "burst-3000", 3000);
}

void tst_OperationLog::noRecordIsLost()
{
    QFETCH(QString, key);
    QFETCH(int, count);
    const QString filler(80, QChar(u'长'));
    for (int i = 0; i < count; ++i)
        writeLog(key, QString("<%1 %2>").arg(i).arg(filler));

    const auto records = [&] {
        return linesOf(logFile(key)) + linesOf(logFile(key, "_tarn_hub_overtake.txt"));
    };
    QTRY_COMPARE_WITH_TIMEOUT(records().size(), count, 20000);
    QSet<int> seen;
    const QRegularExpression form("^(?:\\[ID\\]\\d+ )?<(\\d+) 长{80}>"
                                  "(?:\\[iThreadCnt\\]\\d+|线程数0)$");
    const QStringList all = records();
    for (const QString& record : all) {
        const auto match = form.match(record);
        QVERIFY2(match.hasMatch(), qPrintable("torn: " + record.left(80)));
        seen << match.captured(1).toInt();
    }
    QCOMPARE(seen.size(), count);
}

void tst_OperationLog::keyNamesNoOtherFolder()
{
    writeLog("http-../../evil", "x");
    QTRY_COMPARE(linesOf(logFile("http-.._.._evil")).size(), 1);
}

void tst_OperationLog::hangingDiskHoldsNobodyUp()
{
    NEED_HELD_FILES();
    const QString key = "held";
    dataPath("log");
    QElapsedTimer clock;
    {
        const HeldFile log(logFile(key));
        const HeldFile overflow(logFile(key, "_tarn_hub_overtake.txt"));
        QVERIFY(log.isHeld() && overflow.isHeld());
        clock.start();
        for (int i = 0; i < 40; ++i)
            writeLog(key, "x");
        QVERIFY(!flushLog(100));
        VERIFY_BELOW(clock.elapsed(), 1000);
    }
    QVERIFY(flushLog(10000));
    QCOMPARE(linesOf(logFile(key)).size(), 30); // and the rest waited for its turn
    QCOMPARE(linesOf(logFile(key, "_tarn_hub_overtake.txt")).size(), 10);
}

void tst_OperationLog::nobodyForgesARecord()
{
    const QString reply = QString("{\n[ID]0 [2026\r") + QChar(0x2028) + QChar(0x2029) +
                          QChar(0x85) + QChar(0x1b) + QString(5000, 'x');
    writeLog("forger", logLine(reply, "a.cpp", 1, "f"));
    QVERIFY(flushLog(5000));
    const QString record = QString::fromUtf8(readFile(logFile("forger"))).chopped(1);
    for (const QChar c : record)
        QVERIFY(c.isPrint());
    VERIFY_BELOW(record.size(), Limits::LogRecordChars + 200);
    QVERIFY(record.contains(QString("(%1)").arg(reply.size())));
}

void tst_OperationLog::folderIsPrivateAndBounded()
{
    const QString today = QDate::currentDate().toString(Qt::ISODate);
    const QString lastWeek = QDate::currentDate().addDays(-7).toString(Qt::ISODate);
    const QString tomorrow = QDate::currentDate().addDays(1).toString(Qt::ISODate);
    const QString lastYear = "2020-01-01---1.2.3.4_tarn_hub";
    const QStringList others{"2020-01-01.txt", lastYear + ".txt.bak", "notes.txt"};
    const QStringList ours{lastYear + ".txt", lastYear + "_overtake.txt", lastYear + ".1.txt",
                           lastWeek + "---old_tarn_hub.txt", tomorrow + "---new_tarn_hub.txt"};
    for (const QString& name : filesIn(dataPath("log")))
        QVERIFY(QFile::remove(log(name)));
    for (const QString& name : others + ours)
        writeFile(log(name), QByteArray(40000, 'x'));

    LogBounds bounds;
    bounds.fileBytes = 20000;
    bounds.folderBytes = 60000;
    LogFolder folder(bounds);
    // Three files' worth: each is put by as it is full, and the two old ones make room.
    for (int n = 0; n < 5; ++n)
        folder.append("own", "_tarn_hub", QString(9000, 'y'));
    QCOMPARE(filesIn(dataPath("log")),
             QStringList({lastYear + ".txt.bak", "2020-01-01.txt", today + "---own_tarn_hub.1.txt",
                          today + "---own_tarn_hub.2.txt", today + "---own_tarn_hub.txt",
                          tomorrow + "---new_tarn_hub.txt", "notes.txt"}));
    folder.look();
    QVERIFY(!QFile::exists(log(tomorrow + "---new_tarn_hub.txt")));
    QCOMPARE(linesOf(log(today + "---own_tarn_hub.txt")).size(), 1);
    QCOMPARE(linesOf(log(today + "---own_tarn_hub.1.txt")).size(), 2);

#ifdef Q_OS_UNIX // elsewhere the user's own folder is private as a whole
    QFile::setPermissions(log(today + "---own_tarn_hub.1.txt"), QFile::Permissions(0x6644));
    folder.look();
    for (const QString& name : filesIn(dataPath("log")).filter("own"))
        QCOMPARE(QFile::permissions(log(name)) & 0x77, 0);
    for (const QString& path : {dataPath("log"), dataPath(QString())})
        QCOMPARE(QFile::permissions(path) & 0x77, 0);
#endif

    // A clock that is years ahead for an hour: all there is seems old.
    for (const QString& name : filesIn(dataPath("log")).filter(".txt"))
        QVERIFY(QFile::remove(log(name)));
    writeFile(log(lastYear + ".txt"), "x");
    folder.look();
    QVERIFY(QFile::exists(log(lastYear + ".txt")));
    writeFile(log(lastWeek + "---old_tarn_hub.txt"), "x");
    folder.look();
    QVERIFY(!QFile::exists(log(lastYear + ".txt")));
}

void tst_OperationLog::diskIsNeverFilled()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("sequential device"));
    const auto rights = QFile::permissions("/dev/full");
    QVERIFY(!appendToFile("/dev/full", "x", QIODevice::Append));
    QCOMPARE(QFile::permissions("/dev/full"), rights);
    LogBounds allOfTheDisk;
    allOfTheDisk.reserveBytes = std::numeric_limits<qint64>::max();
    allOfTheDisk.reservePercent = 100;
    LogFolder folder(allOfTheDisk);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("nearly full"));
    for (int n = 0; n < 3; ++n)
        folder.append("full", "_tarn_hub", "lost");
    QVERIFY(!QFile::exists(logFile("full")));
    folder.setBounds({});
    folder.look();
    folder.append("full", "_tarn_hub", "kept");
    QCOMPARE(linesOf(logFile("full")), QStringList("kept"));
    QVERIFY(readFile(logFile("log")).contains("略去 3 条记录"));
}

void tst_OperationLog::floodIsLeftOut()
{
    constexpr qint64 bytes = 4096;
    LogBudget budget;
    int written = 0;
    while (budget.take("flood", bytes, 0).mayWrite)
        ++written;
    QCOMPARE(written * bytes, Limits::LogBurstBytes);
    QVERIFY(!budget.take("flood", bytes, 0).isFirstLeftOut); // once said is enough
    QVERIFY(budget.take("other", bytes, 0).mayWrite);
    // It goes on when there is room for some time, and tells how much is missing.
    QVERIFY(!budget.take("flood", bytes, 60000).mayWrite);
    const LogBudget::Verdict again = budget.take("flood", bytes, 5 * 60000);
    QVERIFY(again.mayWrite);
    QCOMPARE(again.leftOut, 3);
    // Many together get no more than all may.
    for (int key = 0; key < 100000; ++key)
        written += budget.take(QString::number(key), bytes, 5 * 60000).mayWrite ? 1 : 0;
    VERIFY_BELOW(written * bytes, Limits::AllLogsBurstBytes + Limits::LogBurstBytes);
    // A reply goes into the log of the window's thread at once.
    for (int n = 0; n < 1000; ++n)
        writeLog("torrent", QString(2000, 'x'));
    QVERIFY(flushLog(20000));
    const QByteArray all =
        readFile(logFile("torrent")) + readFile(logFile("torrent", "_tarn_hub_overtake.txt"));
    VERIFY_BELOW(all.size(), Limits::LogBurstBytes + 10000);
    QCOMPARE(all.count("日志过多"), 1);
}

QTEST_GUILESS_MAIN(tst_OperationLog)
#include "tst_operation_log.moc"
