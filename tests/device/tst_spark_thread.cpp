// SPDX-License-Identifier: MIT
#include "device/spark_thread.h"

#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/sweep_plan.h"
#include "device/tree_model.h"
#include "tests/support/files.h"
#include "tests/support/stopwatch.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// Which addresses a sweep covers, and what it makes of the output. Real fping on loopback, where
/// every address answers, and small stand-ins for a tool that misbehaves.
class tst_SparkThread : public QObject
{
    Q_OBJECT

private slots:
    void ordinaryNetworkRepeatsItsBlock()
    {
        const QVector<SweepStep> runs = sweepRuns("192.168.1.37");
        QCOMPARE(runs.size(), 1);
        QCOMPARE(runs.first().arguments(), QString(" -a -r 0 -t 100 -g 192.168.1.0/24"));
        QVERIFY(!runs.first().afterPause);
        const SweepStep next = runs.first().next();
        QCOMPARE(next.arguments(), runs.first().arguments());
        QVERIFY(next.afterPause);
    }

    void linkLocalRangeIsCoveredOnce()
    {
        const QVector<SweepStep> runs = sweepRuns("169.254.7.9");
        QCOMPARE(runs.size(), 4);
        QSet<QString> blocks;
        for (const SweepStep& first : runs) {
            SweepStep step = first;
            for (int n = 0; n < 64; ++n) {
                QVERIFY2(!step.afterPause, qPrintable(step.arguments()));
                blocks << step.arguments();
                step = step.next();
            }
            QVERIFY(step.afterPause);
            QCOMPARE(step.arguments(), first.arguments());
        }
        QCOMPARE(blocks.size(), 256);
        QVERIFY(blocks.contains(" -a -r 0 -t 100 -g 169.254.0.0/24"));
        QVERIFY(blocks.contains(" -a -r 0 -t 100 -g 169.254.255.0/24"));
    }

    void oddAddressesGiveNoRun()
    {
        QVERIFY(sweepRuns("").isEmpty());
        QVERIFY(sweepRuns("::1").isEmpty());
        QVERIFY(sweepRuns("10.0.0.1 -f /etc/passwd").isEmpty());
        // Only the link-local range is special.
        QCOMPARE(sweepRuns("169.25.4.1").size(), 1);
    }

    void blocks()
    {
        QCOMPARE(blockAddress("127.77.0.0/24"), QString("127.77.0.0"));
        for (const char* wrong : {"127.77.0.0/16", "127.77.0.5/24", "-f.0/24", ""})
            QVERIFY2(blockAddress(wrong).isEmpty(), wrong);
    }

    void outputInPiecesIsNeverCut()
    {
        const QByteArray output =
            QByteArray("10.0.0.5\n\nx_y\n10.0.0.19\n10.0.0.200").replace('_', '\0');
        const QStringList expected{"10.0.0.5", QString("x") + QChar(0) + 'y', "10.0.0.19",
                                   "10.0.0.200"};
        for (int cut = 0; cut <= output.size(); ++cut) {
            LineAssembler lines;
            QStringList got = lines.add(output.left(cut));
            got += lines.add(output.mid(cut));
            got += lines.rest();
            QVERIFY2(got == expected, qPrintable(QString("cut at %1: ").arg(cut) + got.join('|')));
        }
    }

    /// The operator's own choice of one block, and more boxes than a command line holds.
    void blocksOfAddresses()
    {
        QCOMPARE(blockRun("169.254.3.0").size(), 1);
        QCOMPARE(blockRun("169.254.3.0").first().next().arguments(),
                 QString(" -a -r 0 -t 100 -g 169.254.3.0/24"));
        QStringList ips;
        for (int n = 0; n < 250; ++n)
            ips << QString("10.0.0.%1").arg(n);
        const QVector<QStringList> blocks = checkBlocks(ips);
        QCOMPARE(blocks.size(), 3);
        QCOMPARE(blocks[0] + blocks[1] + blocks[2], ips);
        QVERIFY(checkBlocks({}).isEmpty());
    }

    void endlessLineIsDropped()
    {
        LineAssembler lines;
        for (int n = 0; n < 10000; ++n)
            QVERIFY(lines.add(QByteArray(100, 'x')).isEmpty());
        QVERIFY(lines.rest().join(QString()).size() < 10000);
    }

    void sweepStreamsItsResults()
    {
        QPointer<Spark_Thread> thread = new Spark_Thread({QString(), {TEST_BLOCK ".0/24"}});
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
        // The tool takes about two and a half seconds for a block; the first address is not held
        // back.
        VERIFY_BELOW(first, 1000);
        QVERIFY(clock.elapsed() > 2000);
        QCOMPARE(found.first(), QString(TEST_BLOCK ".1"));
        QCOMPARE(found.last(), QString(TEST_BLOCK ".254"));
        thread->stop();
        QTRY_VERIFY(!thread);
    }

    void checkReportsOnce()
    {
        QPointer<Spark_Thread> thread = new Spark_Thread({QString(), {}});
        const auto answers = answersOf(thread);
        thread->startRefreshDevice({TEST_BLOCK ".5", TEST_BLOCK ".9"});
        QTRY_VERIFY(!thread);
        QCOMPARE(*answers, (QList<QStringList>{{TEST_BLOCK ".5", TEST_BLOCK ".9"}}));
    }

    void manyAddressesAreCheckedInBlocks()
    {
        QStringList ips;
        for (int n = 0; n < 1000; ++n)
            ips << QString("127.77.%1.%2").arg(n / 250).arg(n % 250 + 1);
        QPointer<Spark_Thread> thread = new Spark_Thread({QString(), {}});
        const auto answers = answersOf(thread);
        thread->startRefreshDevice(ips);
        QTRY_VERIFY_WITH_TIMEOUT(!thread, 30000);
        QCOMPARE(answers->size(), 1);
        QStringList alive = answers->first();
        alive.sort();
        ips.sort();
        QCOMPARE(alive, ips);
    }

    void sweepsEndTogether()
    {
        const QString tool = script("trap '' TERM\nn=0; while [ $n -lt 100 ]; do n=$((n+1)); "
                                    "sleep 0.1; done\n");
        QStringList blocks;
        for (int n = 1; n <= 8; ++n)
            blocks << QString("127.77.%1.0/24").arg(n);
        QPointer<Spark_Thread> thread = new Spark_Thread({tool, blocks});
        thread->startFindDevice();
        QTest::qWait(1000);
        Stopwatch clock;
        thread->stop();
        VERIFY_BELOW(clock.elapsed(), 1500);
        QTRY_VERIFY(!thread);
    }

    void brokenToolReportsNothing()
    {
        QPointer<Spark_Thread> thread = new Spark_Thread({"/no/such/fping", {TEST_BLOCK ".0/24"}});
        auto answers = answersOf(thread);
        thread->startRefreshDevice({TEST_BLOCK ".5"});
        QTRY_VERIFY(!thread);
        QCOMPARE(*answers, (QList<QStringList>{QStringList()}));

        thread = new Spark_Thread({"/no/such/fping", {TEST_BLOCK ".0/24"}});
        answers = answersOf(thread);
        thread->startFindDevice();
        QTest::qWait(300);
        thread->stop();
        QTRY_VERIFY(!thread);
        QVERIFY(answers->isEmpty());
    }

    void outputMayComeInPieces()
    {
        const QString tool =
            script("printf '10.0.0'; sleep 0.2; printf '.5\\n\\n10.0.'; sleep 0.2;\n"
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

    void stopEndsTheTool()
    {
        // A tool that neither prints nor ends, and does not listen to being asked.
        const QString pidFile = m_folder.path() + "/pid";
        const QString tool =
            script("trap '' TERM\necho $$ > '" + pidFile.toUtf8() +
                   "'\nn=0; while [ $n -lt 300 ]; do n=$((n+1)); sleep 0.1; done\n");
        for (const bool search : {true, false}) {
            QFile::remove(pidFile);
            QPointer<Spark_Thread> thread = new Spark_Thread({tool, {TEST_BLOCK ".0/24"}});
            if (search)
                thread->startFindDevice();
            else
                thread->startRefreshDevice({TEST_BLOCK ".5"});
            QTRY_VERIFY(QFileInfo(pidFile).size() > 0);
            const qint64 process = linesOf(pidFile).value(0).toLongLong();
            QVERIFY(isScriptRunning(process));
            Stopwatch clock;
            thread->stop();
            VERIFY_BELOW(clock.elapsed(), 1500);
            QTRY_VERIFY(!isScriptRunning(process));
            QTRY_VERIFY(!thread);
        }
    }

    void onlyTheNewestAnswerOfWhomWasAskedCounts()
    {
        // A check of n addresses waits for the file "n" and prints what is in it.
        const QString tool = script("shift 5; f='" + m_folder.path().toUtf8() +
                                    "'/$#; while [ ! -e $f ]; do sleep 0.02; done; cat $f\n"
                                    "grep -q dead $f && kill -9 $$; true\n");
        TreeModel model;
        int answers = 0;
        DeviceRegistry registry(
            model, *Spark_Http::instance(), {tool, {}}, [&](Spark_Thread* check) {
                const auto judge = [&, check](const QStringList& ips) {
                    registry.setReachable(ips, check);
                    ++answers;
                };
                connect(check, &Spark_Thread::S_refreshDeviceIP, this, judge, Qt::QueuedConnection);
            });
        const auto shown = [&] {
            QStringList hosts;
            const auto boxes = model.items(koraFamily());
            for (const Item* box : boxes)
                hosts << box->address().section('.', 3) + (box->isOnline() ? "+" : "-");
            return hosts.join(' ');
        };
        const auto answer = [&](int asked, const QByteArray& lines) {
            const int before = answers;
            writeFile(m_folder.filePath("part"), lines);
            QFile::rename(m_folder.filePath("part"), m_folder.filePath(QString::number(asked)));
            QTRY_COMPARE(answers, before + 1);
        };
        for (const char* ip : {"127.9.9.1", "127.9.9.2", "127.9.9.3"}) {
            registry.addDevice(ip, koraFamily());
            registry.checkStates();
        }
        registry.addDevice("127.9.9.4", koraFamily());
        answer(2, "127.9.9.1\n");
        QCOMPARE(shown(), QString("1+ 2- 3+ 4+")); // neither 3 nor 4 was asked
        answer(1, "");
        QCOMPARE(shown(), QString("1+ 2- 3+ 4+")); // older than the one before
        registry.forgetIdleDevices();
        registry.addDevice("127.9.9.3", koraFamily());
        answer(3, "");
        QCOMPARE(shown(), QString("3+")); // filed again, so seen, after that check had begun
        const int before = answers;
        writeFile(m_folder.filePath("1"), "dead\n");
        registry.checkStates();
        QTRY_COMPARE(answers, before + 1);
        QCOMPARE(shown(), QString("3+")); // the tool did not live to ask
        registry.stop();
    }

private:
    /// What is told from its own thread, gathered in ours.
    std::shared_ptr<QList<QStringList>> answersOf(Spark_Thread* thread)
    {
        auto answers = std::make_shared<QList<QStringList>>();
        for (const auto signal : {&Spark_Thread::S_refreshDeviceIP, &Spark_Thread::S_findDeviceIP})
            connect(thread, signal, this, [answers](const QStringList& ips) { *answers << ips; });
        return answers;
    }

    QString script(const QByteArray& text) const
    {
        return writeScript(m_folder.path() + QString("/tool %1").arg(qHash(text)), text);
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(tst_SparkThread)
#include "tst_spark_thread.moc"
