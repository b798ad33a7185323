// SPDX-License-Identifier: MIT
#pragma once

#include "common/http_connection.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QQueue>

/// The connections to a kind of servers: so many at a time, those that are idle used again. What
/// finds none free waits in the order of asking.
class HttpPool : public QObject
{
    Q_OBJECT

public:
    explicit HttpPool(int mostConnections) : m_most(mostConnections) {}

public slots:
    void ask(const HttpQuestion& question);

signals:
    void answered(const HttpAnswer& answer);

private:
    static QString serverOf(const HttpQuestion& question);
    HttpConnection* idleOne(const QString& server) const;
    HttpConnection* anyIdleOne() const;
    void serve();
    void open(const QString& server, const HttpQuestion& question);
    void remove(HttpConnection* connection);

    const int m_most;
    QMultiHash<QString, HttpConnection*> m_connections; ///< by server; children of this
    QQueue<HttpQuestion> m_waiting;
};
