// SPDX-License-Identifier: MIT
#include "common/box_reply.h"

#include "common/json_map.h"

BoxReply::BoxReply(const QString& text) : m_fields(jsonToMap(text)) {}

QString BoxReply::field(const char* name) const
{
    return m_fields.value(QLatin1String(name)).toString();
}

bool BoxReply::isSuccess() const
{
    return status() == QLatin1String("success");
}

bool BoxReply::isSetSuccess() const
{
    return status() == QLatin1String("set success");
}

bool BoxReply::containsSuccess() const
{
    return status().contains(QLatin1String("success"));
}
