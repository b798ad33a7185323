// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QVariantMap>

#include <functional>

/// The answer to one non-blocking request, decoded.
struct HttpResult {
    QString type;
    QString deviceIp;
    QString body;          ///< as received; empty when the request failed
    QString parameterName; ///< "param_name" of the reply, empty when it has none
    QVariant value;        ///< "value" of the reply, invalid when it has none
};

/// Routes each answer to the feature that asked, by the request's type.
class ResultDispatcher
{
public:
    using Handler = std::function<void(const HttpResult& result)>;

    void on(const QString& type, Handler handler);
    /// For every type that begins with `prefix` and that nobody registered whole.
    void onPrefix(const QString& prefix, Handler handler);
    /// `map` is what Spark_Http::S_finished carries. A type nobody registered is ignored.
    void dispatch(const QVariantMap& map) const;

private:
    Handler handlerFor(const QString& type) const;

    QHash<QString, Handler> m_handlers;
    QMap<QString, Handler> m_prefixes;
};
