// SPDX-License-Identifier: MIT
#include "common/data_path.h"
#include "common/operation_log.h"
#include "tests/support/files.h"
#include "tests/support/held_file.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

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

private:
    QTemporaryDir m_root;
};

void tst_OperationLog::initTestCase()
{
    QVERIFY(m_root.isValid());
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
    const QString filler(500, QChar(u'长'));
    for (int i = 0; i < count; ++i)
        writeLog(key, QString("<%1 %2>").arg(i).arg(filler));

    const auto records = [&] {
        return linesOf(logFile(key)) + linesOf(logFile(key, "_tarn_hub_overtake.txt"));
    };
    QTRY_COMPARE_WITH_TIMEOUT(records().size(), count, 20000);
    QSet<int> seen;
    const QRegularExpression form("^(?:\\[ID\\]\\d+ )?<(\\d+) 长{500}>"
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
        VERIFY_BELOW(clock.elapsed(), 1000);
    }
    QTRY_COMPARE(linesOf(logFile(key)).size(), 30); // and the rest waited for its turn
    QTRY_COMPARE(linesOf(logFile(key, "_tarn_hub_overtake.txt")).size(), 10);
}

QTEST_GUILESS_MAIN(tst_OperationLog)
#include "tst_operation_log.moc"
