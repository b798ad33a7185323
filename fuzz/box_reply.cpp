// SPDX-License-Identifier: MIT
// What boxes answer to reads and commands, and what is made of it.
#include "common/box_reply.h"
#include "common/box_protocol.h"
#include "common/http_result.h"
#include "common/json_map.h"
#include "common/limits.h"
#include "fuzz/fuzz.h"
#include "upgrade/box_answer.h"
#include "upgrade/kept_settings.h"
#include "upgrade/upgrade_record.h"

namespace
{

void requireCommand(const QString& text)
{
    const BoxReply reply(text);
    REQUIRE(!reply.isSuccess() || reply.containsSuccess());
    REQUIRE(!reply.isSetSuccess() || reply.containsSuccess());
    REQUIRE(!(reply.isSuccess() && reply.isSetSuccess()));
    REQUIRE(reply.field("pull_url").size() <= text.size());
}

/// No more of it than the limits allow, and nothing that was not told.
void requireBounded(const HttpResult& result, const QVariant& told)
{
    REQUIRE(result.parameterName.size() <= Limits::ValueChars);
    REQUIRE(result.status.size() <= Limits::ValueChars);
    REQUIRE(result.value.toString().size() <= Limits::ValueChars);
    const QVariantList list = result.value.toList();
    REQUIRE(list.size() <= Limits::ListEntries);
    for (const QVariant& entry : list)
        REQUIRE(entry.toString().size() <= Limits::ValueChars);
    REQUIRE(result.exceeded || result.value == told);
}

void requireRead(const QString& text, const QVariantMap& fields)
{
    const HttpResult result = HttpResult::fromBody(text);
    requireBounded(result, fields.value(QStringLiteral("value")));
    const QVariant name = fields.value(QStringLiteral("param_name"));
    REQUIRE(result.parameterName == name || result.parameterName.isEmpty());
    // A refusal, and a value that could be written back, are never the same answer unless the box
    // itself says that it failed.
    REQUIRE(!result.isRefusal() || !result.status.isEmpty() ||
            !KeptSettings::isValue(result.value));
}

void requireAnswer(const QString& text)
{
    const QString own = QStringLiteral("02:4B:4F:00:00:01");
    const QString mac = BoxAnswer::mac(text);
    REQUIRE(mac.isEmpty() || (BoxProtocol::isMacAddress(mac) && mac.size() <= 17));
    REQUIRE(BoxAnswer::isMac(text, own) == BoxProtocol::isSameMac(mac, own));
    REQUIRE(!BoxAnswer::isMac(text, QString()));
    REQUIRE(BoxAnswer::isFrom(text, own) == BoxAnswer::isMac(text, own));
    REQUIRE(!BoxAnswer::isFrom(text, QString()) || mac.isEmpty());
    REQUIRE(BoxAnswer::version(text).size() <= UpgradeRow::LongestVersion);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = Input(data, size).rest();
    const QVariantMap fields = jsonToMap(bytes);
    const QString text = QString::fromUtf8(bytes);
    requireCommand(text);
    requireRead(text, jsonToMap(text));
    requireAnswer(text);
    return 0;
}
