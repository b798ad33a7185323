// SPDX-License-Identifier: MIT
// Names of recordings and downloads, as boxes, servers and pages offer them.
#include "common/http_result.h"
#include "common/safe_name.h"
#include "fuzz/fuzz.h"
#include "ui/recordings/file_type.h"
#include "web/download_name.h"

namespace
{

/// A save dialog takes each pair of brackets for a filter.
void requireFilter(const QString& name)
{
    const QString filter = saveFilter(name);
    const QString all = QStringLiteral("All file(*.*)");
    REQUIRE(filter.endsWith(all));
    const QString own = filter.chopped(all.size());
    REQUIRE(own.isEmpty() || own.endsWith(QLatin1String(");;")));
    for (const char* sign : {"(", ")", "*", ";;"})
        REQUIRE(own.count(QLatin1String(sign)) == (own.isEmpty() ? 0 : 1));
    REQUIRE(!own.contains(QLatin1Char(' ')) && !own.contains(QLatin1Char('/')));
}

void requireOffered(const QString& name)
{
    requireFileName(safeFileName(name));
    requireFileName(offeredName(name));
    requireFilter(name);
    requireFilter(offeredName(name));
    // The suffix stays: a video is offered as one.
    const QString last =
        QString(name).replace(QLatin1Char('\\'), QLatin1Char('/')).section(QLatin1Char('/'), -1);
    if (fileType(last) == FileType::Video && last.at(0).isLetterOrNumber())
        REQUIRE(fileType(safeFileName(name)) == FileType::Video);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = Input(data, size).rest();
    requireOffered(textOf(bytes));
    const QString inHeader = nameInDisposition(bytes);
    if (!inHeader.isEmpty())
        requireFileName(inHeader);
    const QVariantList listed = HttpResult::fromBody(QString::fromUtf8(bytes)).value.toList();
    for (const QVariant& name : listed)
        requireOffered(name.toString());
    return 0;
}
