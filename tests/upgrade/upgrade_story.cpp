// SPDX-License-Identifier: MIT
#include "tests/upgrade/upgrade_story.h"

#include "common/box_protocol.h"

using Habits = sim::ModelBoxHabits;

Habits UpgradeStory::habits()
{
    static const QStringList names = BoxProtocol::configurationParameters();
    Habits habits;
    habits.readMs = chance(10) ? 1500 : 1 + draw(60);
    habits.writeMs = chance(5) ? 2500 : 1 + draw(80);
    habits.uploadMs = 1000 + draw(30000);
    habits.uploadFailures = chance(15) ? draw(4) : 0;
    habits.takesUpload = !chance(5);
    habits.awayMs = 6000 + draw(30000);
    habits.changeMs = chance(15) ? draw(400000) : draw(5000);
    habits.movesOnRestart = chance(20);
    if (chance(20))
        habits.change = Habits::Change(draw(6));
    if (chance(20))
        habits.answer = Habits::Answer(draw(4));
    if (chance(30))
        habits.resets << "eParam_NDIName"
                      << "eParam_DHCP"
                      << "eParam_NDIHXQuality";
    const auto some = [this](int percent) {
        return chance(percent) ? names.at(draw(names.size())) : QString();
    };
    habits.unreadable = some(3);
    habits.missing = some(5);
    habits.unwritable = some(5);
    habits.misunderstood = some(3);
    return habits;
}

QVector<UpgradeStory::Event> UpgradeStory::troubles(int boxes)
{
    QVector<Event> events;
    const auto add = [&](Event::What what, int percent, int latest, int shortest, int more) {
        if (chance(percent))
            events << Event{what, draw(latest), shortest + draw(more), draw(boxes), false};
    };
    add(Event::Deaf, 20, 120000, 500, 12000);
    add(Event::PowerCut, 10, 200000, 5000, 60000);
    if (boxes > 1)
        add(Event::Swap, 10, 200000, 6000, 6000);
    add(Event::Elsewhere, 10, 200000, 9000, 1);
    return events;
}

QVector<UpgradeStory::Event> UpgradeStory::operation()
{
    QVector<Event> events;
    if (chance(5))
        events << Event{Event::FullDisk, draw(60000), 20000, 0, false};
    for (int n = draw(4) - 1; n > 0; --n)
        events << Event{Event::EndProgram, draw(500000), 1000 + draw(60000), 0, false};
    for (int n = draw(4) - 1; n > 0; --n)
        events << Event{Event::Batch, draw(700000), 0, 0, chance(60)};
    return events;
}
