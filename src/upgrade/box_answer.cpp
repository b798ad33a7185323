// SPDX-License-Identifier: MIT
#include "upgrade/box_answer.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "upgrade/upgrade_record.h"

namespace
{

/// The guard and the step that asked look at the same answer one after the other.
const HttpResult& parsed(const QString& answer)
{
    thread_local HttpResult last;
    if (last.body != answer)
        last = HttpResult::fromBody(answer);
    return last;
}

} // namespace

QString BoxAnswer::mac(const QString& answer)
{
    const QString told = parsed(answer).value.toString();
    return BoxProtocol::isMacAddress(told) ? told : QString();
}

bool BoxAnswer::isMac(const QString& answer, const QString& mac)
{
    return BoxProtocol::isSameMac(parsed(answer).value.toString(), mac);
}

bool BoxAnswer::isFrom(const QString& answer, const QString& mac)
{
    if (!mac.isEmpty())
        return isMac(answer, mac);
    const bool isAnswer = parsed(answer).parameterName == BoxProtocol::MACAddress;
    return isAnswer && BoxAnswer::mac(answer).isEmpty();
}

QString BoxAnswer::version(const QString& answer)
{
    const HttpResult& told = parsed(answer);
    if (told.parameterName != BoxProtocol::FirmVersion)
        return QString();
    return told.value.toString().left(UpgradeRow::LongestVersion);
}
