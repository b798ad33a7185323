// SPDX-License-Identifier: MIT
#include "device/sweep_plan.h"

#include <QTest>

class tst_SweepPlan : public QObject
{
    Q_OBJECT

private slots:
    void ordinaryNetworkRepeatsItsBlock();
    void linkLocalRangeIsCoveredOnce();
    void oddAddressesGiveNoRun();
    void blocks();
    void outputInPiecesIsNeverCut();
    void endlessLineIsDropped();
};

void tst_SweepPlan::ordinaryNetworkRepeatsItsBlock()
{
    const QVector<SweepStep> runs = sweepRuns("192.168.1.37");
    QCOMPARE(runs.size(), 1);
    QCOMPARE(runs.first().arguments(), QString(" -a -r 0 -t 100 -g 192.168.1.0/24"));
    QVERIFY(!runs.first().afterPause);
    const SweepStep next = runs.first().next();
    QCOMPARE(next.arguments(), runs.first().arguments());
    QVERIFY(next.afterPause);
}

void tst_SweepPlan::linkLocalRangeIsCoveredOnce()
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

void tst_SweepPlan::oddAddressesGiveNoRun()
{
    QVERIFY(sweepRuns("").isEmpty());
    QVERIFY(sweepRuns("::1").isEmpty());
    QVERIFY(sweepRuns("10.0.0.1 -f /etc/passwd").isEmpty());
    // Only the link-local range is special.
    QCOMPARE(sweepRuns("169.25.4.1").size(), 1);
}

void tst_SweepPlan::blocks()
{
    QCOMPARE(blockAddress("127.77.0.0/24"), QString("127.77.0.0"));
    for (const char* wrong : {"127.77.0.0/16", "127.77.0.5/24", "-f.0/24", ""})
        QVERIFY2(blockAddress(wrong).isEmpty(), wrong);
}

void tst_SweepPlan::outputInPiecesIsNeverCut()
{
    const QByteArray output = "10.0.0.5\n\n10.0.0.19\n10.0.0.200";
    const QStringList expected{"10.0.0.5", "10.0.0.19", "10.0.0.200"};
    for (int cut = 0; cut <= output.size(); ++cut) {
        LineAssembler lines;
        QStringList got = lines.add(output.left(cut));
        got += lines.add(output.mid(cut));
        got += lines.rest();
        QVERIFY2(got == expected, qPrintable(QString("cut at %1: ").arg(cut) + got.join('|')));
    }
}

void tst_SweepPlan::endlessLineIsDropped()
{
    LineAssembler lines;
    for (int n = 0; n < 10000; ++n)
        QVERIFY(lines.add(QByteArray(100, 'x')).isEmpty());
    QVERIFY(lines.rest().join(QString()).size() < 10000);
}

QTEST_GUILESS_MAIN(tst_SweepPlan)
#include "tst_sweep_plan.moc"
