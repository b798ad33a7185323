// SPDX-License-Identifier: MIT
// Text of others in the logs: it is one line, and not a long one.
#include "common/limits.h"
#include "common/operation_log.h"
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = textOf(Input(data, size).rest());
    const QString clipped = logClip(text);
    REQUIRE(clipped.size() <= Limits::LogRecordChars + 20);
    REQUIRE(text.size() > Limits::LogRecordChars || clipped.size() == text.size());
    for (const QChar c : logLine(text, "file", 1, QStringLiteral("function"))) {
        REQUIRE(c.unicode() >= 0x20 && (c.unicode() < 0x7f || c.unicode() > 0x9f));
        REQUIRE(c.unicode() != 0x2028 && c.unicode() != 0x2029);
    }
    return 0;
}
