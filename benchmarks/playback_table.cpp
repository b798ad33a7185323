// SPDX-License-Identifier: MIT
#include "benchmarks/playback_table.h"

#include "benchmarks/playback_contestants.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace
{

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr int columnWidth = 17;

QString cell(double value)
{
    return std::isinf(value) ? QString("none") : QString::number(value, 'f', value < 100 ? 2 : 0);
}

QStringList playersOf(const PlaybackTable::Row& row)
{
    QStringList players = row.runs.keys();
    players.removeAll(Contestants::Own);
    players.prepend(Contestants::Own);
    return players;
}

void printLine(const QString& name, const QString& unit, const QStringList& cells,
               const QString& verdict = {})
{
    // What is wanted stays in one line however many players there are.
    constexpr int mostPlayers = 5;
    QString line = name.leftJustified(44) + unit.leftJustified(4);
    for (int n = 0; n < mostPlayers; ++n)
        line += cells.value(n).rightJustified(columnWidth);
    std::printf("%s  %s\n", qPrintable(line), qPrintable(verdict));
}

QString verdict(const PlaybackTable::Row& row)
{
    const char* const word = row.holds() ? "holds" : "MISSED";
    const double own = row.median(Contestants::Own);
    if (row.wanted == PlaybackTable::Wanted::Limit)
        return QString("%1 wanted, %2").arg(cell(row.limit), word);
    if (row.wanted == PlaybackTable::Wanted::Nothing && !(row.best() > 0))
        return {};
    if (std::isinf(row.best()))
        return row.wanted == PlaybackTable::Wanted::Nothing ? "" : "nothing to compare with";
    const QString difference = (own < row.best() ? "-" : "+") + cell(std::abs(own - row.best()));
    const QString ratio =
        QString("ratio %1 (%2 %3)").arg(cell(own / row.best()), difference, row.unit);
    return row.wanted == PlaybackTable::Wanted::Nothing
               ? ratio
               : QString("%1, %2 wanted, %3").arg(ratio, cell(row.limit), word);
}

} // namespace

double PlaybackTable::Row::median(const QString& player) const
{
    QVector<double> values = runs.value(player);
    if (values.isEmpty())
        return infinite;
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

double PlaybackTable::Row::best() const
{
    double best = infinite;
    for (auto each = runs.begin(); each != runs.end(); ++each) {
        if (each.key() != Contestants::Own)
            best = std::min(best, median(each.key()));
    }
    return best;
}

bool PlaybackTable::Row::holds() const
{
    const double own = median(Contestants::Own);
    if (wanted == Wanted::Nothing)
        return true;
    if (std::isinf(own))
        return false;
    return wanted == Wanted::Limit ? own <= limit : std::isinf(best()) || own <= limit * best();
}

PlaybackTable::Row& PlaybackTable::add(const QString& name, const QString& unit, Wanted wanted,
                                       double limit)
{
    m_rows.push_back({name, unit, wanted, limit, {}});
    return m_rows.back();
}

bool PlaybackTable::print() const
{
    bool allHold = true;
    QStringList players;
    for (const Row& row : m_rows) {
        allHold = allHold && row.holds();
        if (playersOf(row) != players) {
            players = playersOf(row);
            std::printf("\n");
            printLine({}, {}, players);
        }
        QStringList cells;
        for (const QString& player : players)
            cells << cell(row.median(player));
        printLine(row.name, row.unit, cells, verdict(row));
    }
    std::fflush(stdout);
    return allHold;
}
