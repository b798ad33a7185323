// SPDX-License-Identifier: MIT
#include "update/descriptor.h"

#include "common/json_map.h"
#include "common/limits.h"
#include "common/safe_name.h"

#include <QRegularExpression>
#include <QUrl>

namespace
{

constexpr int md5Digits = 32;
constexpr int sha256Digits = 64;

QVariantMap child(const QVariantMap& map, const char* name)
{
    return map.value(QLatin1String(name)).toMap();
}

QString text(const QVariantMap& map, const char* name)
{
    return map.value(QLatin1String(name)).toString().trimmed();
}

bool isHex(const QString& text, int digits)
{
    static const QRegularExpression hex(QStringLiteral("\\A[0-9a-f]*\\z"));
    return text.size() == digits && hex.match(text).hasMatch();
}

bool isVersion(const QString& text)
{
    static const QRegularExpression words(QStringLiteral("\\A[0-9A-Za-z.-]{1,40}\\z"));
    return words.match(text).hasMatch();
}

QVariantMap updates(const QString& descriptor)
{
    return descriptor.size() > Limits::DescriptorChars ? QVariantMap()
                                                       : child(jsonToMap(descriptor), "updates");
}

/// What both kinds have.
void readPackage(const QVariantMap& from, PackageOffer* offer)
{
    offer->url = text(from, "download-url");
    offer->sha256 = text(from, "sha256").toLower();
    const QByteArray signature = text(from, "signature").toLatin1();
    const QString name = QUrl::fromEncoded(offer->url.toUtf8(), QUrl::StrictMode).fileName();
    // Firmware may be called something else when it comes.
    const bool hasName = !name.isEmpty() || offer->kind == PackageOffer::Kind::Firmware;
    if (offer->url.size() > Limits::DescriptorUrlChars || !hasName)
        offer->problem = QStringLiteral("no address of a file");
    else if (!offer->sha256.isEmpty() && !isHex(offer->sha256, sha256Digits))
        offer->problem = QStringLiteral("no SHA-256");
    offer->name = safeFileName(name);
    offer->signature = QByteArray::fromBase64(signature);
}

} // namespace

PackageOffer readProgramOffer(const QString& descriptor)
{
    const QVariantMap build = child(updates(descriptor), "windows");
    PackageOffer offer;
    readPackage(build, &offer);
    offer.version = text(build, "latest-version");
    if (!isVersion(offer.version))
        offer.problem = QStringLiteral("no version");
    return offer;
}

PackageOffer readFirmwareOffer(const QString& descriptor)
{
    const QVariantMap package = updates(descriptor);
    PackageOffer offer;
    offer.kind = PackageOffer::Kind::Firmware;
    readPackage(package, &offer);
    offer.md5 = text(package, "MD5").toLower();
    if (!isHex(offer.md5, md5Digits))
        offer.problem = QStringLiteral("no MD5");
    return offer;
}
