// SPDX-License-Identifier: MIT
#pragma once

#include "common/http_connection.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QQueue>

/// The connections to a kind of servers: so many at a time, those that are idle used again. What
/// finds none free waits: what somebody waits for goes first, then one host comes after the other.
/// Who let us wait does not hold up the others: a host of which nobody knows yet gets one
/// connection, and of those that were late some connections are kept from all together.
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
    struct Host {
        QQueue<HttpQuestion> waiting;
        int busy = 0;         ///< connections
        int owed = 0;         ///< answers in time, until it counts as one that gives them
        bool isKnown = false; ///< has been asked
        bool isInRing = false;
    };

    static QString serverOf(const HttpQuestion& question);
    HttpConnection* idleOne(const QString& server) const;
    HttpConnection* anyIdleOne() const;
    void noteTime(const QString& host, bool isLate);
    bool mayServeLate() const;
    void serve();
    void serveRing(QQueue<QString>& ring, bool isLate);
    bool serveHead(QQueue<HttpQuestion>& waiting, int most);
    void forgetIdleHosts();
    void open(const QString& server, const HttpQuestion& question);
    void remove(HttpConnection* connection);

    const int m_most;
    QMultiHash<QString, HttpConnection*> m_connections; ///< by server; children of this
    QQueue<HttpQuestion> m_first;                       ///< what somebody waits for
    QHash<QString, Host> m_hosts;
    QQueue<QString> m_ring; ///< the hosts for which something waits
    QQueue<QString> m_lateRing;
};
