// SPDX-License-Identifier: MIT
// Descriptors of packages, as the update server sends them, or whoever is on the way.
#include "common/limits.h"
#include "fuzz/fuzz.h"
#include "update/update_signature.h"

namespace
{

bool isHex(const QString& text, int digits)
{
    return text.size() == digits && QByteArray::fromHex(text.toLatin1()).toHex() == text.toLatin1();
}

void require(const PackageOffer& offer)
{
    requireFileName(offer.name);
    // What is signed says one thing only, and nobody signs without the key.
    REQUIRE(UpdateSignature::text(offer).count('\n') == 5 || !offer.problem.isEmpty());
    REQUIRE(!UpdateSignature::problem(offer, QByteArray(32, 'k')).isEmpty());
    if (!offer.problem.isEmpty())
        return;
    const bool isFirmware = offer.kind == PackageOffer::Kind::Firmware;
    REQUIRE(offer.url.size() <= Limits::DescriptorUrlChars);
    REQUIRE(offer.sha256.isEmpty() || isHex(offer.sha256, 64));
    REQUIRE(isFirmware ? isHex(offer.md5, 32) : offer.md5.isEmpty());
    REQUIRE(isFirmware == offer.version.isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(Input(data, size).rest());
    require(readProgramOffer(text));
    require(readFirmwareOffer(text));
    return 0;
}
