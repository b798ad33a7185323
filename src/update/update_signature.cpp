// SPDX-License-Identifier: MIT
#include "update/update_signature.h"

#include <QStringList>

#include <sodium.h>

namespace
{

using Bytes = const unsigned char*;

Bytes bytes(const QByteArray& data)
{
    return reinterpret_cast<Bytes>(data.constData());
}

bool isSigned(const QByteArray& text, const QByteArray& signature, const QByteArray& key)
{
    return signature.size() == int(crypto_sign_BYTES) &&
           key.size() == int(crypto_sign_PUBLICKEYBYTES) &&
           crypto_sign_verify_detached(bytes(signature), bytes(text),
                                       static_cast<unsigned long long>(text.size()),
                                       bytes(key)) == 0;
}

} // namespace

QByteArray UpdateSignature::text(const PackageOffer& offer)
{
    const bool isProgram = offer.kind == PackageOffer::Kind::Program;
    // None of them has a line break in it.
    const QStringList lines{QStringLiteral("Tarn Hub update 1"),
                            isProgram ? QStringLiteral("program") : QStringLiteral("firmware"),
                            offer.version, offer.name, offer.sha256};
    return (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}

QString UpdateSignature::problem(const PackageOffer& offer, const QByteArray& key)
{
    if (offer.sha256.isEmpty() || offer.signature.isEmpty())
        return QStringLiteral("not signed");
    // More often does no harm.
    if (sodium_init() < 0)
        return QStringLiteral("signatures cannot be checked here");
    return isSigned(text(offer), offer.signature, key) ? QString()
                                                       : QStringLiteral("wrong signature");
}
