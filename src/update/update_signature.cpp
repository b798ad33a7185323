// SPDX-License-Identifier: MIT
#include "update/update_signature.h"

#include "common/platform.h"

#include <QLibrary>

#include <algorithm>
#include <memory>

namespace
{

constexpr int keyBytes = 32;
constexpr int signatureBytes = 64;
/// OpenSSL's number of Ed25519.
constexpr int ed25519 = 1087;

/// OpenSSL, found at run time, as Qt does it: a program without a key does without it.
class Crypto
{
public:
    Crypto()
    {
        static const bool isThere = load();
        m_isThere = isThere;
    }

    bool isThere() const { return m_isThere; }

    bool verify(const QByteArray& text, const QByteArray& signature, const QByteArray& key) const
    {
        const std::unique_ptr<void, decltype(freeKey)> publicKey(
            newKey(ed25519, nullptr, bytes(key), size_t(key.size())), freeKey);
        const std::unique_ptr<void, decltype(freeContext)> context(newContext(), freeContext);
        return publicKey && context &&
               begin(context.get(), nullptr, nullptr, nullptr, publicKey.get()) == 1 &&
               check(context.get(), bytes(signature), size_t(signature.size()), bytes(text),
                     size_t(text.size())) == 1;
    }

private:
    using Bytes = const unsigned char*;

    static Bytes bytes(const QByteArray& data) { return reinterpret_cast<Bytes>(data.constData()); }

    static bool load()
    {
        const QStringList files = Platform::cryptoLibraries();
        return std::any_of(files.begin(), files.end(), &Crypto::loadFrom);
    }

    static bool loadFrom(const QString& file)
    {
        QLibrary library(file);
        return take(library, "EVP_PKEY_new_raw_public_key", &newKey) &&
               take(library, "EVP_PKEY_free", &freeKey) &&
               take(library, "EVP_MD_CTX_new", &newContext) &&
               take(library, "EVP_MD_CTX_free", &freeContext) &&
               take(library, "EVP_DigestVerifyInit", &begin) &&
               take(library, "EVP_DigestVerify", &check);
    }

    template <class Function>
    static bool take(QLibrary& library, const char* name, Function* function)
    {
        *function = reinterpret_cast<Function>(library.resolve(name));
        return *function != nullptr;
    }

    static inline void* (*newKey)(int, void*, Bytes, size_t) = nullptr;
    static inline void (*freeKey)(void*) = nullptr;
    static inline void* (*newContext)() = nullptr;
    static inline void (*freeContext)(void*) = nullptr;
    static inline int (*begin)(void*, void**, const void*, void*, void*) = nullptr;
    static inline int (*check)(void*, Bytes, size_t, Bytes, size_t) = nullptr;
    bool m_isThere = false;
};

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
    const Crypto crypto;
    if (!crypto.isThere())
        return QStringLiteral("OpenSSL is missing, which checks signatures");
    const bool isSigned = key.size() == keyBytes && offer.signature.size() == signatureBytes &&
                          crypto.verify(text(offer), offer.signature, key);
    return isSigned ? QString() : QStringLiteral("wrong signature");
}
