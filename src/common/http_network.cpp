// SPDX-License-Identifier: MIT
#include "common/http_network.h"

#include "common/http_pool.h"
#include "common/limits.h"

HttpNetwork::HttpNetwork()
    : m_boxes(new HttpPool(Limits::BoxConnections))
    , m_strangers(new HttpPool(Limits::StrangerConnections))
{
    qRegisterMetaType<HttpAnswer>();
    m_thread.setObjectName(QStringLiteral("network"));
    for (HttpPool* pool : {m_boxes, m_strangers}) {
        pool->moveToThread(&m_thread);
        connect(&m_thread, &QThread::finished, pool, &QObject::deleteLater);
        connect(pool, &HttpPool::answered, this, &HttpNetwork::answered);
    }
    m_thread.start();
}

HttpNetwork::~HttpNetwork()
{
    m_thread.quit();
    m_thread.wait();
}

void HttpNetwork::ask(const HttpQuestion& question)
{
    HttpPool* pool = question.isStranger ? m_strangers : m_boxes;
    QMetaObject::invokeMethod(pool, [pool, question] { pool->ask(question); });
}
