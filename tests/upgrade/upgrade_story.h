// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/model_lan.h"

#include <QStringList>
#include <QVector>

#include <random>

/// What is drawn from a seed: the habits of boxes, and what an operator and the world do to them
/// and to the program meanwhile. The same for modelled boxes and for those on sockets.
/// Milliseconds of the model.
class UpgradeStory
{
public:
    struct Event {
        enum What {
            Deaf,       ///< box `box` cannot be reached
            PowerCut,   ///< it has no power
            Swap,       ///< two boxes get each other's addresses
            Elsewhere,  ///< somebody else gives it another version, and it restarts
            Written,    ///< somebody else writes `value` to its setting `name`
            FullDisk,   ///< that of the program
            EndProgram, ///< and its next start after `lasts`
            Batch,      ///< of all boxes; `keep`: with their settings
        };
        What what = Deaf;
        qint64 at = 0;
        int lasts = 0;
        int box = 0; ///< of all boxes, counted from 0
        bool keep = false;
        QString name;
        QString value; ///< empty: an address that no box has had
    };

    explicit UpgradeStory(quint32 seed) : m_random(seed) {}

    int draw(int below) { return int(m_random() % quint32(below)); }
    bool chance(int percent) { return draw(100) < percent; }

    sim::ModelBoxHabits habits();
    /// What happens to a few of `boxes` boxes.
    QVector<Event> troubles(int boxes);
    /// What happens to the program, and what the operator does later on.
    QVector<Event> operation();

    static QString packageVersion() { return QStringLiteral("1.2.0.623"); }
    static QString versionFromElsewhere() { return QStringLiteral("1.2.0.555"); }

private:
    std::mt19937 m_random;
};
