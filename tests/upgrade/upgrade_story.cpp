// SPDX-License-Identifier: MIT
#include "tests/upgrade/upgrade_story.h"

#include "common/box_protocol.h"

namespace
{

const QStringList& parameters()
{
    static const QStringList names = BoxProtocol::configurationParameters();
    return names;
}

} // namespace

/// Of any kind, most of them good.
sim::ModelBoxHabits UpgradeStory::habits()
{
    using Habits = sim::ModelBoxHabits;
    const auto some = [this](int percent) {
        return chance(percent) ? parameters().at(draw(parameters().size())) : QString();
    };
    Habits habits;
    habits.readMs = chance(10) ? 1500 : 1 + draw(60);
    habits.writeMs = chance(5) ? 2500 : 1 + draw(80);
    habits.uploadMs = 1000 + draw(30000);
    habits.uploadFailures = chance(15) ? draw(4) : 0;
    habits.takesUpload = !chance(5);
    habits.damagedUploads = chance(10) ? draw(4) : 0;
    habits.awayMs = chance(10) ? 500 + draw(5500) : 6000 + draw(30000);
    habits.diesOfRestart = chance(2);
    habits.changeMs = chance(15) ? draw(400000) : draw(5000);
    habits.earlyMs = chance(10) ? 900 : chance(3) ? draw(150000) : 0;
    habits.answersErrors = chance(5);
    habits.movesOnRestart = chance(20);
    if (chance(20))
        habits.change = Habits::Change(draw(6));
    if (chance(20))
        habits.answer = Habits::Answer(draw(4));
    if (chance(30))
        habits.resets << QStringLiteral("eParam_NDIName") << QStringLiteral("eParam_DHCP")
                      << QStringLiteral("eParam_NDIHXQuality");
    if (chance(10))
        habits.resets << QStringLiteral("eParam_IPAddress");
    habits.unreadable = some(3);
    habits.missing = some(5);
    if (chance(3))
        habits.missing =
            chance(50) ? QStringLiteral("eParam_MACAddress") : QStringLiteral("eParam_FirmVersion");
    habits.unwritable = some(5);
    habits.misunderstood = some(3);
    habits.denied = some(6);
    if (chance(3))
        habits.denied = BoxProtocol::MACAddress;
    habits.denyMs = 1000 + draw(20000);
    return habits;
}

QVector<UpgradeStory::Event> UpgradeStory::troubles(int boxes)
{
    QVector<Event> events;
    const auto add = [&](Event::What what, int percent, int latest, int shortest, int more) {
        if (chance(percent))
            events << Event{what, draw(latest), shortest + draw(more), draw(boxes), false, {}, {}};
    };
    add(Event::Deaf, 20, 120000, 500, 12000);
    add(Event::PowerCut, 9, 200000, 5000, 60000);
    add(Event::PowerCut, 2, 200000, 700000, 200000);
    if (boxes > 1)
        add(Event::Swap, 10, 200000, 6000, 6000);
    add(Event::Elsewhere, 10, 200000, chance(50) ? 9000 : 2000, 1);
    if (chance(15)) {
        const QString name = parameters().at(draw(parameters().size()));
        const QString value = name == BoxProtocol::IPAddress ? QString() : QString::number(draw(2));
        events << Event{Event::Written, draw(400000), 0, draw(boxes), false, name, value};
    }
    return events;
}

QVector<UpgradeStory::Event> UpgradeStory::operation()
{
    QVector<Event> events;
    if (chance(5))
        events << Event{Event::FullDisk, draw(60000), 20000, 0, false, {}, {}};
    for (int n = draw(4) - 1; n > 0; --n)
        events << Event{Event::EndProgram, draw(500000), 1000 + draw(60000), 0, false, {}, {}};
    for (int n = draw(4) - 1; n > 0; --n)
        events << Event{Event::Batch, draw(700000), 0, 0, chance(60), {}, {}};
    return events;
}
