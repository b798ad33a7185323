// SPDX-License-Identifier: MIT
// What fping prints, in pieces as it comes, and which of it becomes an address.
#include "common/box_protocol.h"
#include "device/sweep_plan.h"
#include "fuzz/fuzz.h"

#include <arpa/inet.h>

namespace
{

constexpr int longestLine = 4096;

QStringList linesOf(const QByteArray& output, int piece)
{
    LineAssembler assembler;
    QStringList lines;
    inPieces(output, piece, [&](const QByteArray& data) { lines += assembler.add(data); });
    return lines + assembler.rest();
}

bool hasLongLine(const QByteArray& output)
{
    const QList<QByteArray> lines = output.split('\n');
    return std::any_of(lines.begin(), lines.end(),
                       [](const QByteArray& line) { return line.size() > longestLine; });
}

void requireAddress(const QString& text)
{
    in_addr address;
    const bool isAddress = BoxProtocol::isIpv4Address(text);
    REQUIRE(isAddress == (!text.contains(QChar(0)) &&
                          inet_pton(AF_INET, text.toUtf8().constData(), &address) == 1));
    for (const SweepStep& step : sweepRuns(text) + blockRun(text)) {
        REQUIRE(isAddress && step.min >= 0 && step.max <= 255);
        // Only numbers stand behind the options.
        const QString block = step.arguments().section(QLatin1Char(' '), -1);
        REQUIRE(BoxProtocol::isIpv4Address(blockAddress(block)));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const int piece = input.number();
    const QByteArray output = input.rest();
    const QStringList lines = linesOf(output, piece);
    REQUIRE(hasLongLine(output) || lines == linesOf(output, output.size()));
    for (const QString& line : lines) {
        REQUIRE(!line.isEmpty() && !line.contains(QLatin1Char('\n')));
        requireAddress(line.trimmed());
    }
    return 0;
}
