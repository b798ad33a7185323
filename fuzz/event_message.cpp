// SPDX-License-Identifier: MIT
// Messages of the event feeds.
#include "media/event_message.h"

#include "fuzz/fuzz.h"

#include <QTime>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const qint64 ms = recordMsOf(QString::fromUtf8(Input(data, size).rest()));
    REQUIRE(ms >= 0);
    const QTime shown = QTime::fromString(recordTimeText(ms), QStringLiteral("hh:mm:ss.zzz"));
    REQUIRE(shown.isValid() && shown.msecsSinceStartOfDay() == ms % (24 * 60 * 60 * 1000));
    return 0;
}
