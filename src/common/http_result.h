// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

/// The answer to one non-blocking request, decoded.
struct HttpResult {
    QString type; ///< the routing word of the request
    QString id;   ///< of the request, as Spark_Http::get() returned it
    QString deviceIp;
    QString body;          ///< as received; empty when the request failed
    int httpStatus = 0;    ///< of the answer; 0 when none came
    QString parameterName; ///< "param_name" of the reply, empty when it has none
    QVariant value;        ///< "value" of the reply, invalid when it has none
    QString status;        ///< "status" of the reply, empty when it has none
    /// Which limit the reply went over, in plain words; null when none. One with a value that is
    /// too long has failed; of a list that is too long the first entries are here.
    const char* exceeded = nullptr;

    /// The box has answered, and says that it has nothing of that name.
    bool isRefusal() const;

    /// What Spark_Http::S_finished carries; `id` tells one request from another.
    static QVariantMap toMap(const QString& type, const QString& id, const QString& deviceIp,
                             const QString& body, int httpStatus);
    static HttpResult fromMap(const QVariantMap& map);
    /// The reply to a read alone; `type`, `id` and `deviceIp` stay empty.
    static HttpResult fromBody(const QString& body);
    /// The routing word alone, without decoding the body.
    static QString typeOf(const QVariantMap& map);
};
