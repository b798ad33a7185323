// SPDX-License-Identifier: MIT
#include "common/platform.h"
#include "tests/support/stopwatch.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

/// What the program relies on in the ping sweep that it finds on this computer: the same of fping
/// itself and of the one that is shipped for Windows.
class tst_Fping : public QObject
{
    Q_OBJECT

private slots:
    void answers_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("output");
        QTest::addColumn<int>("exitCode");
        const auto row = [](const char* name, const char* arguments, const char* output, int code) {
            QTest::newRow(name) << QString(arguments).replace("BLOCK", TEST_BLOCK)
                                << QString(output).replace("BLOCK", TEST_BLOCK) << code;
        };
        row("a small block", "-a -r 0 -t 100 -g BLOCK.4/30", "BLOCK.5|BLOCK.6|", 0);
        row("named by one in it", "-a -r 0 -t 100 -g BLOCK.6/30", "BLOCK.5|BLOCK.6|", 0);
        row("two without ends", "-a -r 0 -t 100 -g BLOCK.4/31", "BLOCK.4|BLOCK.5|", 0);
        row("one", "-a -r 0 -t 100 -g BLOCK.7/32", "BLOCK.7|", 0);
        row("first and last", "-a -r 0 -t 100 -g BLOCK.8 BLOCK.9", "BLOCK.8|BLOCK.9|", 0);
        row("several", "-a -r 2 -t 200 BLOCK.9 BLOCK.3", "BLOCK.9|BLOCK.3|", 0);
        row("one twice", "-a -r 2 -t 200 BLOCK.9 BLOCK.9", "BLOCK.9|BLOCK.9|", 0);
        row("letters and values together", "-ar2 -t200 BLOCK.9", "BLOCK.9|", 0);
        row("behind the options", "-a -- BLOCK.9", "BLOCK.9|", 0);
        row("not only the living", "-r 0 -t 100 BLOCK.9", "BLOCK.9 is alive|", 0);
        row("a name of nobody", "-a -r 0 -t 100 BLOCK.9 no,such", "BLOCK.9|", 2);
        // Only where the network is the test's own: elsewhere somebody may be there.
        if (qEnvironmentVariable("TARN_NETWORK") == "own") {
            row("no way there", "-a -r 2 -t 200 10.9.9.9 BLOCK.9", "BLOCK.9|", 1);
            row("no way, told", "-r 0 -t 100 10.9.9.9", "10.9.9.9 is unreachable|", 1);
        }
    }

    void answers()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, output);
        QFETCH(int, exitCode);
        QProcess tool;
        start(&tool, arguments);
        QVERIFY(tool.waitForFinished());
        QCOMPARE(QString::fromLatin1(tool.readAllStandardOutput()).replace('\n', '|'), output);
        QCOMPARE(tool.exitStatus(), QProcess::NormalExit);
        QCOMPARE(tool.exitCode(), exitCode);
    }

    /// Neither says that somebody is there.
    void refusals()
    {
        for (const char* wrong :
             {"-a -r 0 -t 100 -g 127.0.0.1/33", "-Z 127.0.0.1", "-a -r x 127.0.0.1", "-a -r",
              "-a -g 127.0.0.1", "-a -r 0 -g 127.0.0.0/30 127.0.0.1"}) {
            QProcess tool;
            start(&tool, wrong);
            QVERIFY(tool.waitForFinished());
            QVERIFY2(tool.readAllStandardOutput().isEmpty(), wrong);
            QVERIFY2(tool.exitCode() != 0, wrong);
        }
    }

    void linesComeOneByOne()
    {
        QProcess tool;
        QElapsedTimer clock;
        clock.start();
        start(&tool, "-a -r 0 -t 100 -g " TEST_BLOCK ".0/24");
        QVERIFY(tool.waitForReadyRead());
        VERIFY_BELOW(clock.elapsed(), 1000);
        QVERIFY(tool.waitForFinished());
        // One question in ten milliseconds: a network is not flooded.
        QVERIFY(clock.elapsed() > 2000);
        VERIFY_BELOW(clock.elapsed(), 6000);
        QCOMPARE(tool.readAllStandardOutput().count('\n'), 254);
    }

    void thousandsAtOnce()
    {
        QProcess tool;
        start(&tool, "-a -i 1 -r 0 -t 1000 -g 127.4.0.0/21");
        QVERIFY(tool.waitForFinished());
        QCOMPARE(tool.readAllStandardOutput().count('\n'), 2046);
        QCOMPARE(tool.exitCode(), 0);
    }

private:
    static void start(QProcess* tool, const QString& arguments)
    {
        tool->setStandardErrorFile(QProcess::nullDevice());
        tool->start(Platform::fpingPath({}), arguments.split(' '), QIODevice::ReadOnly);
        QVERIFY2(tool->waitForStarted(), qPrintable(tool->errorString()));
    }
};

QTEST_GUILESS_MAIN(tst_Fping)
#include "tst_fping.moc"
