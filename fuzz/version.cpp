// SPDX-License-Identifier: MIT
// Versions, as descriptors, packages and boxes tell them.
#include "update/version.h"

#include "fuzz/fuzz.h"
#include "upgrade/upgrade_judgement.h"

#include <QVersionNumber>

namespace
{

bool isVersion(const QString& text)
{
    const int dots = text.count(QLatin1Char('.'));
    return dots == 2 || dots == 3;
}

/// "Newer" is an order: nothing is newer than itself, no two are newer than each other, and what is
/// not told apart from a third version is not told apart at all.
void requireOrder(const QString& a, const QString& b, const QString& c)
{
    const auto newer = isNewerVersion;
    const auto same = [newer](const QString& x, const QString& y) {
        return !newer(x, y) && !newer(y, x);
    };
    REQUIRE(!newer(a, a));
    REQUIRE(!newer(a, b) || (isVersion(a) && isVersion(b) && !newer(b, a)));
    if (!isVersion(a) || !isVersion(b) || !isVersion(c))
        return;
    REQUIRE(!(newer(a, b) && newer(b, c)) || newer(a, c));
    REQUIRE(!(same(a, b) && same(b, c)) || same(a, c));
}

void requireFound(const QString& text)
{
    const QString found = UpgradeJudgement::versionIn(text);
    REQUIRE(found.isEmpty() ||
            (text.contains(found) && !QVersionNumber::fromString(found).isNull()));
    REQUIRE(found.isEmpty() || UpgradeJudgement::versionIn(found) == found);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const QString a = textOf(input.line());
    const QString b = textOf(input.line());
    const QString c = textOf(input.line());
    requireOrder(a, b, c);
    requireOrder(c, a, b);
    requireFound(a);
    return 0;
}
