// SPDX-License-Identifier: MIT
#include "device/sweep_plan.h"

#include "common/box_protocol.h"

namespace
{

/// No tool prints a longer line; more than this without a line end is dropped.
constexpr int longestLine = 4096;
/// The shortest command lines hold some 2,000 addresses; a block of these is asked within seconds.
constexpr int addressesInBlock = 100;

/// All of it: the conversion of a QByteArray would end at the first zero.
QString textOf(const QByteArray& output)
{
    return QString::fromLocal8Bit(output.constData(), output.size());
}

} // namespace

SweepStep SweepStep::next() const
{
    SweepStep step = *this;
    step.afterPause = v + 1 > max;
    step.v = step.afterPause ? min : v + 1;
    return step;
}

QString SweepStep::arguments() const
{
    return QStringLiteral(" -a -r 0 -t 100 -g %1.%2.%3.0/24").arg(ip1).arg(ip2).arg(v);
}

QVector<SweepStep> sweepRuns(const QString& localAddress)
{
    if (!BoxProtocol::isIpv4Address(localAddress))
        return {};
    const QVector<SweepStep> own = blockRun(localAddress);
    const SweepStep& block = own.first();
    if (block.ip1 != 169 || block.ip2 != 254)
        return own;
    constexpr int blocksPerRun = 64;
    QVector<SweepStep> runs;
    for (int first = 0; first < 256; first += blocksPerRun)
        runs.append(SweepStep{block.ip1, block.ip2, first, first, first + blocksPerRun - 1});
    return runs;
}

QVector<SweepStep> blockRun(const QString& address)
{
    if (!BoxProtocol::isIpv4Address(address))
        return {};
    const QStringList parts = address.split(QLatin1Char('.'), Qt::SkipEmptyParts);
    const int v = parts.at(2).toInt();
    return {SweepStep{parts.at(0).toInt(), parts.at(1).toInt(), v, v, v}};
}

QString blockAddress(const QString& block)
{
    const QString ending = QStringLiteral(".0/24");
    if (!block.endsWith(ending))
        return QString();
    const QString address = block.chopped(3);
    return BoxProtocol::isIpv4Address(address) ? address : QString();
}

QVector<QStringList> checkBlocks(const QStringList& ips)
{
    QVector<QStringList> blocks;
    for (int first = 0; first < ips.size(); first += addressesInBlock)
        blocks << ips.mid(first, addressesInBlock);
    return blocks;
}

QString checkArguments(const QStringList& ips)
{
    return QStringLiteral(" -a -r 2 -t 200 ") + ips.join(QLatin1Char(' '));
}

QStringList outputLines(const QString& output)
{
    return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList LineAssembler::add(const QByteArray& piece)
{
    m_open += piece;
    const int end = m_open.lastIndexOf('\n');
    if (end < 0) {
        if (m_open.size() > longestLine)
            m_open.clear();
        return {};
    }
    const QStringList lines = outputLines(textOf(m_open.left(end)));
    m_open.remove(0, end + 1);
    return lines;
}

QStringList LineAssembler::rest()
{
    const QStringList lines = outputLines(textOf(m_open));
    m_open.clear();
    return lines;
}
