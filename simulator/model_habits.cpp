// SPDX-License-Identifier: MIT
#include "simulator/model_lan.h"

namespace sim
{

ModelBoxHabits ModelBoxHabits::drawn(const std::function<int(int)>& draw,
                                     const QStringList& parameters)
{
    const auto chance = [&draw](int percent) { return draw(100) < percent; };
    const auto some = [&](int percent) {
        return chance(percent) ? parameters.at(draw(parameters.size())) : QString();
    };
    ModelBoxHabits habits;
    habits.readMs = chance(10) ? 1500 : 1 + draw(60);
    habits.writeMs = chance(5) ? 2500 : 1 + draw(80);
    habits.uploadMs = 1000 + draw(30000);
    habits.uploadFailures = chance(15) ? draw(4) : 0;
    habits.takesUpload = !chance(5);
    habits.damagedUploads = chance(10) ? draw(4) : 0;
    habits.awayMs = chance(10) ? 500 + draw(5500) : 6000 + draw(30000);
    habits.diesOfRestart = chance(2);
    habits.changeMs = chance(15) ? draw(400000) : draw(5000);
    habits.earlyMs = chance(10) ? 900 : 0;
    habits.movesOnRestart = chance(20);
    if (chance(20))
        habits.change = Change(draw(6));
    if (chance(20))
        habits.answer = Answer(draw(4));
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
    return habits;
}

} // namespace sim
