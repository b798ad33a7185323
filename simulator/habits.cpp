// SPDX-License-Identifier: MIT
#include "simulator/habits.h"

namespace sim
{
namespace
{

constexpr qint64 never = 20 * 24 * 3600 * 1000LL;

Fault fault(FaultKind kind, const QString& target, qint64 amount = -1, const QString& text = {})
{
    Fault made;
    made.kind = kind;
    made.target = target;
    made.amount = amount;
    made.text = text;
    return made;
}

/// `kind` for a single parameter, when there is one.
void addFor(VirtualBox& box, FaultKind kind, const QString& tag, const QString& parameter,
            const QString& text = {})
{
    if (!parameter.isEmpty())
        box.addFault(
            fault(kind, tag.isEmpty() ? parameter : tag + QLatin1Char('+') + parameter, -1, text));
}

/// So many uploads go wrong.
void addTimes(VirtualBox& box, FaultKind kind, int times)
{
    Fault made = fault(kind, QStringLiteral("upload"));
    made.strikes = times;
    if (times > 0)
        box.addFault(made);
}

void addChange(VirtualBox& box, const ModelBoxHabits& habits, int pace)
{
    using Change = ModelBoxHabits::Change;
    const bool begins = habits.change != Change::NeverBegins;
    box.addFault(fault(FaultKind::OtaSlow, {}, begins ? habits.changeMs / pace : never));
    switch (habits.change) {
    case Change::Normal:
    case Change::NeverBegins:
        break;
    case Change::StaysAway:
        box.addFault(fault(FaultKind::OtaStaysAway, {}));
        break;
    case Change::FallsBack:
        box.addFault(fault(FaultKind::OtaOldVersion, {}));
        break;
    case Change::OlderVersion:
        box.addFault(fault(FaultKind::OtaFallsBack, {}, -1, QStringLiteral("1.1.0.100")));
        break;
    case Change::Refuses:
        box.addFault(fault(FaultKind::Fail, QStringLiteral("ota")));
        break;
    }
    if (!habits.resets.isEmpty())
        box.addFault(fault(FaultKind::OtaResets, {}, -1, habits.resets.join(QLatin1Char(' '))));
}

void addAnswer(VirtualBox& box, const ModelBoxHabits& habits, int pace)
{
    using Answer = ModelBoxHabits::Answer;
    const QString ota = QStringLiteral("ota");
    switch (habits.answer) {
    case Answer::AtOnce:
        break;
    case Answer::Late:
        box.addFault(fault(FaultKind::LateAnswer, ota, habits.changeMs / pace * 3 / 4));
        break;
    case Answer::Never:
        box.addFault(fault(FaultKind::NoAnswer, ota));
        break;
    case Answer::HangsUp:
        box.addFault(fault(FaultKind::HangUp, ota, 0));
        break;
    }
}

} // namespace

void giveHabits(VirtualBox& box, const ModelBoxHabits& habits, int pace)
{
    box.setRebootTime(habits.awayMs / pace, habits.awayMs / pace);
    box.addFault(fault(FaultKind::Slow, QStringLiteral("read"), habits.readMs / pace));
    box.addFault(fault(FaultKind::Slow, QStringLiteral("write"), habits.writeMs / pace));
    const QString upload = QStringLiteral("upload");
    box.addFault(fault(FaultKind::Slow, upload, habits.uploadMs / pace));
    addTimes(box, FaultKind::Fail, habits.uploadFailures);
    addTimes(box, FaultKind::WrongMd5, habits.damagedUploads);
    if (!habits.takesUpload)
        box.addFault(fault(FaultKind::WrongMd5, upload));
    addChange(box, habits, pace);
    addAnswer(box, habits, pace);
    addFor(box, FaultKind::Garbage, QStringLiteral("read"), habits.unreadable);
    addFor(box, FaultKind::Unknown, {}, habits.missing);
    Fault denied = fault(FaultKind::Unknown, habits.denied);
    denied.strikes = 1;
    if (!habits.denied.isEmpty())
        box.addFault(denied);
    addFor(box, FaultKind::Fail, QStringLiteral("write"), habits.unwritable);
    addFor(box, FaultKind::Mistake, QStringLiteral("write"), habits.misunderstood,
           QStringLiteral("?"));
}

} // namespace sim
