// SPDX-License-Identifier: MIT
#include "common/http_pool.h"

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
    m_waiting.enqueue(question);
    serve();
}

void HttpPool::serve()
{
    while (!m_waiting.isEmpty()) {
        const QString server = serverOf(m_waiting.head());
        if (HttpConnection* idle = idleOne(server)) {
            idle->ask(m_waiting.dequeue());
            continue;
        }
        if (m_connections.size() >= m_most) {
            HttpConnection* other = anyIdleOne();
            if (!other)
                return;
            remove(other);
        }
        open(server, m_waiting.dequeue());
    }
}

void HttpPool::open(const QString& server, const HttpQuestion& question)
{
    auto* connection = new HttpConnection(question, this);
    m_connections.insert(server, connection);
    connect(connection, &HttpConnection::answered, this, [this](const HttpAnswer& answer) {
        emit answered(answer);
        // Later: the connection may just be ending.
        QMetaObject::invokeMethod(this, &HttpPool::serve, Qt::QueuedConnection);
    });
    connect(connection, &HttpConnection::ended, this, [this, connection] {
        remove(connection);
        QMetaObject::invokeMethod(this, &HttpPool::serve, Qt::QueuedConnection);
    });
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
