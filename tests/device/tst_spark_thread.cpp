// SPDX-License-Identifier: MIT
#include "device/spark_thread.h"

#include "common/platform.h"
#include "tests/support/files.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

/// Real fping on loopback, where every address answers, and small stand-ins for a tool that
/// misbehaves.
class tst_SparkThread : public QObject
{
    Q_OBJECT

private slots:
    void sweepStreamsItsResults();
    void checkReportsOnce();
    void brokenToolReportsNothing();
    void outputMayComeInPieces();
    void stopEndsTheTool();

private:
    QString script(const QByteArray& text) const
    {
        return writeScript(m_folder.path() + QString("/tool %1").arg(qHash(text)), text);
    }

    QTemporaryDir m_folder;
};

void tst_SparkThread::sweepStreamsItsResults()
{
    QPointer<Spark_Thread> thread =
        new Spark_Thread({Platform::fpingPath(QString()), {TEST_BLOCK ".0/24"}});
    QStringList found;
    QElapsedTimer clock;
    qint64 first = -1;
    connect(thread, &Spark_Thread::S_findDeviceIP, this, [&](const QStringList& ips) {
        if (first < 0)
            first = clock.elapsed();
        found << ips;
    });
    clock.start();
    thread->startFindDevice();
    QTRY_COMPARE_WITH_TIMEOUT(found.size(), 254, 10000);
    // The tool takes about two and a half seconds for a block; the first address is not held back.
    QVERIFY2(first < 1000, qPrintable(QString::number(first)));
    QVERIFY(clock.elapsed() > 2000);
    QCOMPARE(found.first(), QString(TEST_BLOCK ".1"));
    QCOMPARE(found.last(), QString(TEST_BLOCK ".254"));
    thread->stop();
    QTRY_VERIFY(!thread);
}

void tst_SparkThread::checkReportsOnce()
{
    QPointer<Spark_Thread> thread = new Spark_Thread({Platform::fpingPath(QString()), {}});
    QSignalSpy answers(thread, &Spark_Thread::S_refreshDeviceIP);
    thread->startRefreshDevice({TEST_BLOCK ".5", TEST_BLOCK ".9"});
    QTRY_COMPARE(answers.size(), 1);
    QCOMPARE(answers.first().first().toStringList(),
             (QStringList{TEST_BLOCK ".5", TEST_BLOCK ".9"}));
    QTRY_VERIFY(!thread);
    QCOMPARE(answers.size(), 1);
}

void tst_SparkThread::brokenToolReportsNothing()
{
    QPointer<Spark_Thread> thread = new Spark_Thread({"/no/such/fping", {TEST_BLOCK ".0/24"}});
    QSignalSpy answers(thread, &Spark_Thread::S_refreshDeviceIP);
    thread->startRefreshDevice({TEST_BLOCK ".5"});
    QTRY_COMPARE(answers.size(), 1);
    QCOMPARE(answers.first().first().toStringList(), QStringList());
    QTRY_VERIFY(!thread);

    thread = new Spark_Thread({"/no/such/fping", {TEST_BLOCK ".0/24"}});
    QSignalSpy found(thread, &Spark_Thread::S_findDeviceIP);
    thread->startFindDevice();
    QTest::qWait(300);
    QVERIFY(found.isEmpty());
    thread->stop();
    QTRY_VERIFY(!thread);
}

void tst_SparkThread::outputMayComeInPieces()
{
    const QString tool = script("printf '10.0.0'; sleep 0.2; printf '.5\\n\\n10.0.'; sleep 0.2;\n"
                                "printf '0.19\\n10.0.0.7'; sleep 0.2; echo '%s' \"$*\" >&2\n");
    QPointer<Spark_Thread> thread = new Spark_Thread({tool, {TEST_BLOCK ".0/24"}});
    QStringList found;
    connect(thread, &Spark_Thread::S_findDeviceIP, this,
            [&](const QStringList& ips) { found << ips; });
    thread->startFindDevice();
    QTRY_COMPARE(found.size(), 3);
    QCOMPARE(found, (QStringList{"10.0.0.5", "10.0.0.19", "10.0.0.7"}));
    thread->stop();
}

void tst_SparkThread::stopEndsTheTool()
{
    // A tool that neither prints nor ends, and does not listen to being asked.
    const QString pidFile = m_folder.path() + "/pid";
    const QString tool = script("trap '' TERM\necho $$ > '" + pidFile.toUtf8() +
                                "'\nn=0; while [ $n -lt 300 ]; do n=$((n+1)); sleep 0.1; done\n");
    for (const bool search : {true, false}) {
        QFile::remove(pidFile);
        QPointer<Spark_Thread> thread = new Spark_Thread({tool, {TEST_BLOCK ".0/24"}});
        if (search)
            thread->startFindDevice();
        else
            thread->startRefreshDevice({TEST_BLOCK ".5"});
        QTRY_VERIFY(QFileInfo(pidFile).size() > 0);
        const QString process = "/proc/" + linesOf(pidFile).value(0);
        QVERIFY(QFileInfo::exists(process));
        QElapsedTimer clock;
        clock.start();
        thread->stop();
        QVERIFY2(clock.elapsed() < 1500, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(!QFileInfo::exists(process));
        QTRY_VERIFY(!thread);
    }
}

QTEST_GUILESS_MAIN(tst_SparkThread)
#include "tst_spark_thread.moc"
