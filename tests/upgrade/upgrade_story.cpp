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

sim::ModelBoxHabits UpgradeStory::habits()
{
    return sim::ModelBoxHabits::drawn([this](int below) { return draw(below); }, parameters());
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
