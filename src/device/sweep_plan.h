// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

/// The arithmetic of a sweep: which blocks of addresses are asked, and in which order.

/// A position in a run over the /24 blocks ip1.ip2.min.0 to ip1.ip2.max.0.
struct SweepStep {
    int ip1 = 0;
    int ip2 = 0;
    int v = 0; ///< third number of the block swept now
    int min = 0;
    int max = 0;
    bool afterPause = false; ///< wait before this step: the run begins again at its first block

    /// The step that follows this one, endlessly.
    SweepStep next() const;
    /// Options and block for the sweep tool, beginning with a blank.
    QString arguments() const;
};

/// The runs that find the neighbours of a local address: one over its own /24, or four side by side
/// over the whole link-local range. Empty for text that is no IPv4 address.
QVector<SweepStep> sweepRuns(const QString& localAddress);

/// The run over the one /24 that `address` is in, whatever range that belongs to.
QVector<SweepStep> blockRun(const QString& address);

/// The address of a block written "a.b.c.0/24", empty for anything else.
QString blockAddress(const QString& block);

/// `ips` in parts that fit on a command line everywhere.
QVector<QStringList> checkBlocks(const QStringList& ips);

/// Options for asking only `ips` whether they still answer, beginning with a blank.
QString checkArguments(const QStringList& ips);

/// The lines in a tool's output; empty ones are dropped.
QStringList outputLines(const QString& output);

/// Puts output that arrives in pieces together again, line by line.
class LineAssembler
{
public:
    /// Adds a piece; returns the lines that are whole now.
    QStringList add(const QByteArray& piece);
    /// At the end of the output: what stands after the last line end.
    QStringList rest();

private:
    QByteArray m_open;
};
