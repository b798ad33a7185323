// SPDX-License-Identifier: MIT
#include "upgrade/box_answer.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "upgrade/upgrade_record.h"

QString BoxAnswer::mac(const QString& answer)
{
    const QString told = HttpResult::fromBody(answer).value.toString();
    return BoxProtocol::isMacAddress(told) ? told : QString();
}

bool BoxAnswer::isMac(const QString& answer, const QString& mac)
{
    return BoxProtocol::isSameMac(HttpResult::fromBody(answer).value.toString(), mac);
}

QString BoxAnswer::version(const QString& answer)
{
    const HttpResult told = HttpResult::fromBody(answer);
    if (told.parameterName != BoxProtocol::FirmVersion)
        return QString();
    return told.value.toString().left(UpgradeRow::LongestVersion);
}
