// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>
#include <QVector>

#include <deque>

/// All that was measured, player beside player: each cell the median of its runs.
class PlaybackTable
{
public:
    enum class Wanted {
        Nothing, ///< told for information
        Ratio,   ///< this program's part of the best of the others'
        Limit,   ///< this program's value
    };

    struct Row {
        QString name;
        QString unit;
        Wanted wanted;
        double limit;
        QMap<QString, QVector<double>> runs;

        /// Notes the value of one run; one that failed is noted as infinite.
        void note(const QString& player, double value) { runs[player] << value; }
        double median(const QString& player) const;
        /// The smallest median of the other players; infinite without any.
        double best() const;
        bool holds() const;
    };

    /// A new last row; it stays where it is.
    Row& add(const QString& name, const QString& unit, Wanted wanted = Wanted::Nothing,
             double limit = 0);
    /// Prints the table; whether all that is wanted holds.
    bool print() const;

private:
    std::deque<Row> m_rows;
};
