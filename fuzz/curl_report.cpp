// SPDX-License-Identifier: MIT
// What curl tells of a transfer: its own meter, and what the server sends as headers.
#include "common/curl_report.h"

#include "fuzz/fuzz.h"

namespace
{

CurlReport read(const QByteArray& output, int piece)
{
    CurlReport report;
    inPieces(output, piece, [&report](const QByteArray& data) { report.feed(data); });
    return report;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const int piece = input.number();
    const QByteArray output = input.rest();
    const CurlReport whole = read(output, output.size());
    REQUIRE(whole.httpStatus() == 0 || (whole.httpStatus() >= 100 && whole.httpStatus() <= 999));
    REQUIRE(whole.totalBytes() >= -1);
    REQUIRE(whole.receivedBytes() >= 0);
    REQUIRE(whole.silentReports() >= 0);
    REQUIRE(whole.sentPercent() >= -1 && whole.sentPercent() <= 100);
    REQUIRE(whole.error().size() <= 4096);
    const CurlReport cut = read(output, piece);
    REQUIRE(whole.httpStatus() == cut.httpStatus() && whole.totalBytes() == cut.totalBytes());
    REQUIRE(whole.receivedBytes() == cut.receivedBytes() && whole.error() == cut.error());
    return 0;
}
