// SPDX-License-Identifier: MIT
#include "tests/upgrade/upgrade_world.h"
#include "upgrade/settings_reader.h"

#include <QTest>

namespace
{

const QString mac = "02:4B:4F:00:00:01";
const QString ip = "127.1.0.1";
const QString name = "eParam_NDIName";

/// The engine over one modelled box that takes some seconds for everything.
struct Bench {
    Bench()
    {
        box.settings["eParam_DHCP"] = "1";
        lan.setActed([this](const sim::ModelBox&, const QString& act) { acts << act; });
    }

    void pass(int seconds, const std::function<bool()>& until = {})
    {
        for (int n = 0; n < seconds && !(until && until()); ++n) {
            time.runUntil(time.now() + 1000);
            fleet.tick();
            fleet.countDown();
        }
    }
    BoxUpgrade& begin(bool keep)
    {
        fleet.begin({"/KORA_1.2.0.623.dat", "digest", "1.2.0.623"});
        return fleet.add(ip, mac, keep);
    }

    sim::ModelTime time;
    sim::ModelLan lan{time};
    ModelLink link{lan};
    ModelClock clock{time};
    ModelStore store{time};
    ModelKept kept;
    UpgradeFleet fleet{link, clock, store, kept, [](const QString&) { return QStringList(ip); }};
    sim::ModelBox& box = lan.add(mac, ip);
    QStringList acts;
};

/// A batch of an earlier run with the one box, whose name was kept.
UpgradeSession earlier(UpgradeRow::Stage stage, UpgradeRow::Settings settings)
{
    UpgradeSession session;
    session.started = QDateTime::fromMSecsSinceEpoch(1699990000000, Qt::UTC);
    UpgradeRow row;
    row.mac = mac;
    row.address = row.addressBefore = ip;
    row.started = session.started;
    row.stage = stage;
    row.settings = settings;
    row.saved = {{name, "its name"}};
    session.rows << row;
    return session;
}

} // namespace

/// What histories drawn at random reach too seldom, or never may.
class tst_BoxUpgrade : public QObject
{
    Q_OBJECT

private slots:
    void guardRefusesWhatMayNeverHappen_data();
    void guardRefusesWhatMayNeverHappen();
    void aRefusalEndsTheUpgradeOfOneBox();
    void aDenialIsBelievedTheSecondTime();
    void aSlowBoxIsReadNoLongerThanAllowed();
    void aBoxThatHidIsKnownByItsPlace();
    void itsVersionAloneLetsNoBoxGo();
    void pingEndsNoAbsence();
    void anOlderUpgradeLeavesTheBoxToTheLater();
    void aFullDiskHidesNoLaterUpgrade();
};

void tst_BoxUpgrade::guardRefusesWhatMayNeverHappen_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("arrives");

    QTest::newRow("in order") << "kept who dhcp who upload ordered who activate silent version "
                                 "who write who restart"
                              << "eParam_DHCP upload activate eParam_NDIName restart";
    QTest::newRow("nobody asked who is there") << "kept dhcp"
                                               << "";
    QTest::newRow("asked before the last write") << "kept who dhcp upload"
                                                 << "eParam_DHCP";
    QTest::newRow("asked too long ago") << "kept who wait dhcp"
                                        << "";
    QTest::newRow("another box answers") << "kept other dhcp"
                                         << "";
    QTest::newRow("settings not on disk") << "who dhcp"
                                          << "";
    QTest::newRow("order not on disk") << "kept who upload who activate"
                                       << "upload";
    QTest::newRow("a second order") << "ordered who activate silent version who activate"
                                    << "activate";
    QTest::newRow("written while it may change") << "kept ordered who activate version who write"
                                                 << "activate";
    QTest::newRow("away, but with its old version") << "kept ordered who activate silent who write"
                                                    << "activate";
    QTest::newRow("restarted while it may change") << "ordered who activate version who restart"
                                                   << "activate";
    QTest::newRow("uploaded while it may change") << "ordered who activate version who upload"
                                                  << "activate";
    QTest::newRow("after the allowance") << "ordered who activate allowance who write"
                                         << "activate eParam_NDIName";
    QTest::newRow("a value of another box") << "ordered who activate allowance who foreign"
                                            << "activate";
    QTest::newRow("nothing after a refusal") << "dhcp kept who dhcp"
                                             << "";
}

void tst_BoxUpgrade::guardRefusesWhatMayNeverHappen()
{
    QFETCH(QString, steps);
    QFETCH(QString, arrives);
    Bench bench;
    sim::ModelBox& other = bench.lan.add("02:4B:4F:00:00:02", "127.1.0.2");
    // What is judged is the guard, not how the box takes it.
    bench.box.habits.change = sim::ModelBoxHabits::Change::Refuses;
    bench.box.settings["eParam_FirmVersion"] = "1.0";
    UpgradeSession session;
    session.rows << UpgradeRow();
    UpgradeRow& row = session.rows.first();
    row.mac = mac;
    row.address = ip;
    row.versionBefore = "1.0";
    row.settings = UpgradeRow::Settings::Waiting;
    row.saved = {{name, "its name"}, {BoxProtocol::DHCP, "0"}};
    BoxGuard guard(session, 0, bench.link, bench.clock);
    guard.expect();
    row.saved[name] = "another's";
    const auto nothing = [](const QString&) {};
    const auto pass = [&bench](qint64 ms) { bench.time.runUntil(bench.time.now() + ms); };

    const QStringList list = steps.split(' ');
    for (const QString& step : list) {
        if (step == "kept") {
            guard.kept(row);
        } else if (step == "ordered") {
            row.stage = UpgradeRow::Stage::Activated;
            guard.kept(row);
        } else if (step == "who" || step == "silent") {
            bench.box.isDeaf = step == "silent";
            guard.read(ip, BoxProtocol::MACAddress, nothing);
            // So that what follows comes at once, as in an upgrade.
            pass(step == "silent" ? 3000 : 30);
            bench.box.isDeaf = false;
        } else if (step == "other") {
            bench.lan.swapAddresses(bench.box, other);
            guard.read(ip, BoxProtocol::MACAddress, nothing);
            pass(30);
        } else if (step == "version") {
            bench.box.settings["eParam_FirmVersion"] = "2.0";
            guard.read(ip, BoxProtocol::FirmVersion, nothing);
            pass(30);
        } else if (step == "wait" || step == "allowance") {
            pass(step == "wait" ? 5000 : 600000);
        } else if (step == "upload") {
            guard.upload(ip, "/KORA_2.0.dat", nothing);
        } else if (step == "activate") {
            guard.order(ip, BoxOrder::Activate, nothing);
        } else if (step == "restart") {
            guard.order(ip, BoxOrder::Restart, nothing);
        } else if (step == "dhcp") {
            guard.write(ip, BoxProtocol::DHCP, "1", nothing);
        } else {
            guard.write(ip, name, step == "write" ? "its name" : "another's", nothing);
        }
        pass(2);
    }
    QCOMPARE(bench.acts.join(' '), arrives);
    QCOMPARE(guard.breach().isEmpty(),
             QString(QTest::currentDataTag()) == "in order" ||
                 QString(QTest::currentDataTag()) == "after the allowance");
}

/// What it had still waits for it, on disk, and the report says why.
void tst_BoxUpgrade::aRefusalEndsTheUpgradeOfOneBox()
{
    Bench bench;
    BoxUpgrade& upgrade = bench.begin(true);
    bench.pass(300, [&] { return upgrade.step() == BoxUpgrade::Step::Away; });
    QCOMPARE(upgrade.step(), BoxUpgrade::Step::Away);
    bench.acts.clear();
    // As if another's settings had got into the row of this box.
    for (QVariant& value : upgrade.row().saved)
        value = "another's";
    bench.pass(300);
    QCOMPARE(bench.acts, QStringList());
    QCOMPARE(upgrade.step(), BoxUpgrade::Step::Missing);
    QVERIFY(upgrade.isHeld());
    QVERIFY(!upgrade.row().stopped.isEmpty());
    QCOMPARE(bench.store.journals.size(), 1);
    const UpgradeSession& session = bench.store.journals.first();
    QCOMPARE(session.rows.first().settings, UpgradeRow::Settings::Waiting);
    QVERIFY(UpgradeText::cells(session, session.rows.first(), {})
                .at(8)
                .contains(upgrade.row().stopped));
}

/// Some boxes say for a while after their start that they have no such parameter.
void tst_BoxUpgrade::aDenialIsBelievedTheSecondTime()
{
    for (const bool isThere : {true, false}) {
        Bench bench;
        bench.box.habits.denied = name;
        bench.box.deniesUntil = isThere ? 10000 : 1000000;
        BoxUpgrade& upgrade = bench.begin(true);
        bench.pass(100, [&] { return upgrade.step() > BoxUpgrade::Step::ReadingSettings; });
        QCOMPARE(upgrade.row().settings, UpgradeRow::Settings::Waiting);
        QCOMPARE(upgrade.row().saved.contains(name), isThere);
        QCOMPARE(upgrade.row().absent, isThere ? QStringList() : QStringList(name));
        QVERIFY(bench.time.now() >= 15000);
    }
}

/// It answers everything in time, each a little late.
void tst_BoxUpgrade::aSlowBoxIsReadNoLongerThanAllowed()
{
    Bench bench;
    bench.box.habits.readMs = 1500;
    SettingsReader reader(bench.link, bench.clock);
    qint64 end = 0;
    reader.start(ip, mac, 10, [&](const QVariantMap&, bool) { end = bench.time.now(); });
    for (int n = 0; n < 100; ++n) {
        bench.time.runUntil(bench.time.now() + 250);
        reader.tick();
    }
    QVERIFY2(end >= 10000 && end <= 12000, qPrintable(QString::number(end)));
}

/// While it starts a box may deny that it has a MAC address.
void tst_BoxUpgrade::aBoxThatHidIsKnownByItsPlace()
{
    for (const bool hidFirst : {true, false}) {
        Bench bench;
        bench.box.habits.denied = BoxProtocol::MACAddress;
        bench.box.habits.changeMs = 300000;
        bench.box.deniesUntil = hidFirst ? 60000 : 0;
        bench.begin(false).row().mac = hidFirst ? QString() : mac;
        bench.pass(120, [&] { return bench.acts.contains("activate"); });
        bench.box.deniesUntil = hidFirst ? 0 : 1000000;
        QVERIFY(bench.fleet.owns(hidFirst ? mac : QString(), ip));
        BoxUpgrade& second = bench.begin(hidFirst);
        second.row().mac = hidFirst ? mac : QString();
        bench.pass(200);
        QCOMPARE(second.step(), BoxUpgrade::Step::Ended);
        QCOMPARE(bench.acts, (QStringList{"upload", "activate"}));
    }
}

/// Some tell their new version long before they restart with it.
void tst_BoxUpgrade::itsVersionAloneLetsNoBoxGo()
{
    Bench bench;
    bench.box.habits.changeMs = 900000;
    bench.box.habits.earlyMs = 880000;
    BoxUpgrade& upgrade = bench.begin(false);
    bench.pass(120, [&] { return bench.acts.contains("activate"); });
    bench.pass(500);
    QVERIFY(upgrade.hasSucceeded());
    QVERIFY(bench.fleet.owns(mac));
    bench.pass(120);
    QVERIFY(!bench.fleet.owns(mac));
}

/// Many boxes answer ping long before anything else.
void tst_BoxUpgrade::pingEndsNoAbsence()
{
    Bench bench;
    bench.box.habits.awayMs = 40000;
    BoxUpgrade& upgrade = bench.begin(true);
    bench.pass(300, [&] { return !bench.box.isOn; });
    for (int n = 0; n < 60 && upgrade.step() == BoxUpgrade::Step::Away; ++n) {
        bench.pass(4);
        bench.fleet.cameOnline(ip);
    }
    bench.pass(30, [&] { return upgrade.step() == BoxUpgrade::Step::Restarting; });
    QCOMPARE(upgrade.step(), BoxUpgrade::Step::Restarting);
    QVERIFY2(bench.time.now() < 120000, qPrintable(QString::number(bench.time.now())));
}

/// On a slow disk an upgrade may have ended, and a later one begun, before the disk knows.
void tst_BoxUpgrade::anOlderUpgradeLeavesTheBoxToTheLater()
{
    Bench bench;
    const UpgradeSession older =
        earlier(UpgradeRow::Stage::Activated, UpgradeRow::Settings::Restored);
    UpgradeSession later = older;
    later.started = older.started.addSecs(60);
    later.rows.first().stage = UpgradeRow::Stage::Uploading;
    later.rows.first().settings = UpgradeRow::Settings::Waiting;

    bench.fleet.adopt({older, later});
    bench.pass(10);
    QVERIFY2(bench.acts.isEmpty(), qPrintable(bench.acts.join(' ')));
    bench.fleet.release({mac});
    bench.pass(100);
    QCOMPARE(bench.acts.join(' '), QString(name + " restart"));
    QVERIFY(bench.fleet.isIdle());
}

/// Whoever finds that settings were handed over finds to whom, whenever a full disk has room again.
void tst_BoxUpgrade::aFullDiskHidesNoLaterUpgrade()
{
    const UpgradeSession older =
        earlier(UpgradeRow::Stage::UploadFailed, UpgradeRow::Settings::Waiting);
    for (int fullMs = 0; fullMs < 40000; fullMs += 500) {
        Bench bench;
        bench.store.delay = 700;
        bench.store.isFull = true;
        bench.fleet.adopt({older});
        bench.begin(true);
        bench.time.in(fullMs, [&bench] { bench.store.isFull = false; });
        const auto isHandedOver = [&bench, &older] {
            const UpgradeSession saved = bench.store.reports.value(older.baseName());
            return !saved.rows.isEmpty() &&
                   saved.rows.first().settings == UpgradeRow::Settings::HandedOver;
        };
        for (int n = 0; n < 6000 && !isHandedOver(); ++n) {
            bench.time.runUntil(bench.time.now() + 100);
            if (n % 10 == 0)
                bench.fleet.tick();
        }
        QVERIFY2(isHandedOver(), qPrintable(QString::number(fullMs)));
        QVERIFY2(bench.store.reports.size() == 2, qPrintable(QString::number(fullMs)));
    }
}

QTEST_GUILESS_MAIN(tst_BoxUpgrade)
#include "tst_box_upgrade.moc"
