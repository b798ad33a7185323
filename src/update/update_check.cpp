// SPDX-License-Identifier: MIT
#include "update/update_check.h"

#include "common/spark_http.h"

UpdateCheck::UpdateCheck(Spark_Http& http, QString server)
    : m_http(http), m_server(std::move(server))
{
}

void UpdateCheck::start()
{
    const QString folder = m_server + QStringLiteral("/wp-content/uploads/config/");
    m_http.get(QStringLiteral("toupgrade"), folder + QStringLiteral("update_Tarn_Hub.json"), false);
    m_http.get(QStringLiteral("toupgradekora"), folder + QStringLiteral("update_KORA.json"), false);
}
