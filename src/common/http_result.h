// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

/// The answer to one non-blocking request, decoded.
struct HttpResult {
    QString type; ///< the routing word of the request
    QString deviceIp;
    QString body;          ///< as received; empty when the request failed
    QString parameterName; ///< "param_name" of the reply, empty when it has none
    QVariant value;        ///< "value" of the reply, invalid when it has none

    /// `map` is what Spark_Http::S_finished carries.
    static HttpResult fromMap(const QVariantMap& map);
};
