// SPDX-License-Identifier: MIT
#include "tests/upgrade/upgrade_world.h"

#include <QTest>

/// Years of upgrades in minutes: each seed is one history, and a failure is its seed. More of them
/// with TARN_LIVES, one of them with TARN_SEED.
class tst_UpgradeSimulation : public QObject
{
    Q_OBJECT

private slots:
    void noBoxIsHarmed();
};

void tst_UpgradeSimulation::noBoxIsHarmed()
{
    const int wanted = qEnvironmentVariableIntValue("TARN_LIVES") > 0
                           ? qEnvironmentVariableIntValue("TARN_LIVES")
                           : TEST_LIVES;
    const bool isOne = qEnvironmentVariableIsSet("TARN_SEED");
    quint32 seed = quint32(qEnvironmentVariableIntValue("TARN_SEED"));
    int lives = 0;
    int bad = 0;
    QMap<QString, int> endings;
    QElapsedTimer clock;
    clock.start();
    while (lives < wanted && bad < 10) {
        UpgradeWorld world(seed);
        if (isOne)
            world.trace();
        const QStringList problems = world.run();
        if (!problems.isEmpty()) {
            ++bad;
            qWarning().noquote() << "TARN_SEED=" + QString::number(seed) << problems.join("; ");
        }
        lives += world.lives();
        const auto ended = world.endings();
        for (auto it = ended.cbegin(); it != ended.cend(); ++it)
            endings[it.key()] += it.value();
        if (isOne)
            break;
        ++seed;
    }
    qInfo() << lives << "lives in" << seed << "worlds," << clock.elapsed() << "ms";
    for (auto it = endings.cbegin(); it != endings.cend(); ++it)
        qInfo().noquote() << it.value() << it.key();
    QCOMPARE(bad, 0);
    // Every kind of ending has come about, or the simulation does not reach what it is for.
    if (!isOne)
        QVERIFY(endings.size() >= 12);
}

QTEST_GUILESS_MAIN(tst_UpgradeSimulation)
#include "tst_upgrade_simulation.moc"
