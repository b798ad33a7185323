// SPDX-License-Identifier: MIT
#include "common/http_pool.h"

#include "common/limits.h"

#include <algorithm>

QString HttpPool::serverOf(const HttpQuestion& question)
{
    const QString way = question.isProven   ? QStringLiteral("proven ")
                        : question.isSecure ? QStringLiteral("secure ")
                                            : QString();
    return way + question.host + QLatin1Char(':') + QString::number(question.port);
}

HttpConnection* HttpPool::idleOne(const QString& server) const
{
    const auto [begin, end] = m_connections.equal_range(server);
    const auto found =
        std::find_if(begin, end, [](const HttpConnection* c) { return c->isIdle(); });
    return found == end ? nullptr : *found;
}

HttpConnection* HttpPool::anyIdleOne() const
{
    for (HttpConnection* connection : m_connections) {
        if (connection->isIdle())
            return connection;
    }
    return nullptr;
}

void HttpPool::ask(const HttpQuestion& question)
{
    if (question.goesFirst) {
        m_first.enqueue(question);
        serve();
        return;
    }
    forgetIdleHosts();
    Host& host = m_hosts[question.host];
    host.waiting.enqueue(question);
    if (!host.isInRing) {
        host.isInRing = true;
        // Whoever is new may be a box that somebody has just plugged in.
        if (host.isKnown)
            (host.owed > 0 ? m_lateRing : m_ring).enqueue(question.host);
        else
            m_ring.prepend(question.host);
    }
    serve();
}

/// Addresses may be made up without end.
void HttpPool::forgetIdleHosts()
{
    constexpr int most = 20000;
    if (m_hosts.size() < most)
        return;
    for (auto it = m_hosts.begin(); it != m_hosts.end();) {
        if (it->isInRing || it->busy > 0)
            ++it;
        else
            it = m_hosts.erase(it);
    }
}

void HttpPool::noteTime(const QString& host, bool isLate)
{
    Host& noted = m_hosts[host];
    --noted.busy;
    noted.isKnown = true;
    noted.owed = isLate ? Limits::AnswersInTime : qMax(0, noted.owed - 1);
}

bool HttpPool::mayServeLate() const
{
    const auto holdsUp = [this](const HttpConnection* connection) {
        return !connection->isIdle() && m_hosts.value(connection->host()).owed > 0;
    };
    return std::count_if(m_connections.begin(), m_connections.end(), holdsUp) <
           m_most * Limits::LatePercent / 100;
}

void HttpPool::serve()
{
    while (!m_first.isEmpty() && serveHead(m_first, m_most + Limits::FirstConnections)) {
    }
    serveRing(m_ring, false);
    serveRing(m_lateRing, true);
    // Those of the late ones that are no longer: nothing else may happen that would serve them.
    serveRing(m_ring, false);
}

void HttpPool::serveRing(QQueue<QString>& ring, bool isLate)
{
    for (int unserved = 0; unserved < ring.size(); ++unserved) {
        const QString name = ring.dequeue();
        Host& host = m_hosts[name];
        if (host.waiting.isEmpty()) {
            host.isInRing = false;
            --unserved;
        } else if ((host.owed > 0) != isLate) {
            (isLate ? m_ring : m_lateRing).enqueue(name);
            --unserved;
        } else if (!host.isKnown && host.busy > 0) {
            ring.enqueue(name);
        } else if ((isLate && !mayServeLate()) || !serveHead(host.waiting, m_most)) {
            ring.prepend(name);
            return;
        } else {
            ring.enqueue(name);
            unserved = -1;
        }
    }
}

bool HttpPool::serveHead(QQueue<HttpQuestion>& waiting, int most)
{
    const QString server = serverOf(waiting.head());
    if (HttpConnection* idle = idleOne(server)) {
        ++m_hosts[idle->host()].busy;
        idle->ask(waiting.dequeue());
        return true;
    }
    if (m_connections.size() >= most) {
        HttpConnection* other = anyIdleOne();
        if (!other)
            return false;
        remove(other);
    }
    open(server, waiting.dequeue());
    return true;
}

void HttpPool::open(const QString& server, const HttpQuestion& question)
{
    auto* connection = new HttpConnection(question, this);
    m_connections.insert(server, connection);
    const auto take = [this, host = question.host](const HttpAnswer& answer) {
        noteTime(host, answer.isLate);
        emit answered(answer);
        // Later: the connection may just be ending.
        QMetaObject::invokeMethod(this, &HttpPool::serve, Qt::QueuedConnection);
    };
    connect(connection, &HttpConnection::answered, this, take);
    connect(connection, &HttpConnection::ended, this, [this, connection] {
        remove(connection);
        QMetaObject::invokeMethod(this, &HttpPool::serve, Qt::QueuedConnection);
    });
    ++m_hosts[question.host].busy;
    connection->ask(question);
}

void HttpPool::remove(HttpConnection* connection)
{
    for (auto it = m_connections.begin(); it != m_connections.end(); ++it) {
        if (it.value() == connection) {
            m_connections.erase(it);
            break;
        }
    }
    connection->disconnect(this);
    connection->deleteLater();
}
