// SPDX-License-Identifier: MIT
#include "tests/upgrade/upgrade_world.h"

#include <QTest>
#include <QThread>

#include <future>

namespace
{

/// What many histories came to.
struct Tally {
    int lives = 0;
    int bad = 0;
    QMap<QString, int> endings;

    void add(const Tally& other)
    {
        lives += other.lives;
        bad += other.bad;
        for (auto it = other.endings.cbegin(); it != other.endings.cend(); ++it)
            endings[it.key()] += it.value();
    }
};

Tally runWorld(quint32 seed, bool traced)
{
    UpgradeWorld world(seed);
    if (traced)
        world.trace();
    const QStringList problems = world.run();
    if (!problems.isEmpty())
        qWarning().noquote() << "TARN_SEED=" + QString::number(seed) << problems.join("; ");
    return {world.lives(), problems.isEmpty() ? 0 : 1, world.endings()};
}

/// Every `step`-th history from `seed` on, until they hold `lives` lives, or ten went wrong.
Tally runWorlds(quint32 seed, quint32 step, int lives)
{
    Tally tally;
    for (; tally.lives < lives && tally.bad < 10; seed += step)
        tally.add(runWorld(seed, false));
    return tally;
}

} // namespace

/// Years of upgrades in minutes: each seed is one history, and a failure is its seed. More of them
/// with TARN_LIVES, beginning with TARN_SEED; that one alone, told in full, without TARN_LIVES.
class tst_UpgradeSimulation : public QObject
{
    Q_OBJECT

private slots:
    void noBoxIsHarmed();
};

void tst_UpgradeSimulation::noBoxIsHarmed()
{
    const int asked = qEnvironmentVariableIntValue("TARN_LIVES");
    const auto first = quint32(qEnvironmentVariableIntValue("TARN_SEED"));
    if (qEnvironmentVariableIsSet("TARN_SEED") && asked == 0) {
        QCOMPARE(runWorld(first, true).bad, 0);
        return;
    }
    const int lives = asked > 0 ? asked : TEST_LIVES;
    const auto threads = quint32(qMax(1, QThread::idealThreadCount()));
    QElapsedTimer clock;
    clock.start();
    std::vector<std::future<Tally>> parts;
    for (quint32 n = 0; n < threads; ++n)
        parts.push_back(std::async(std::launch::async, runWorlds, first + n, threads,
                                   lives / int(threads) + 1));
    Tally all;
    for (auto& part : parts)
        all.add(part.get());
    qInfo() << all.lives << "lives," << clock.elapsed() << "ms";
    for (auto it = all.endings.cbegin(); it != all.endings.cend(); ++it)
        qInfo().noquote() << it.value() << it.key();
    QCOMPARE(all.bad, 0);
    // Every kind of ending has come about, or the simulation does not reach what it is for.
    QVERIFY(all.endings.size() >= 12);
}

int main(int argc, char* argv[])
{
    // Ten million lives take longer than a test usually may.
    qputenv("QTEST_FUNCTION_TIMEOUT", "20000000");
    // A seed is one history in every run of the program, and told to its end.
    qSetGlobalQHashSeed(0);
    QCoreApplication application(argc, argv);
    tst_UpgradeSimulation test;
    return QTest::qExec(&test, application.arguments()
                                   << QStringLiteral("-maxwarnings") << QStringLiteral("0"));
}
#include "tst_upgrade_simulation.moc"
