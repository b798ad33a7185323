// SPDX-License-Identifier: MIT
#include "media/event_sockets.h"

#include "common/limit_log.h"
#include "media/event_feed.h"
#include "media/event_message.h"

namespace
{

constexpr quint16 streamPort = 8001;
constexpr quint16 mediaPort = 8002;

} // namespace

EventSocket::EventSocket(quint16 port, QThread& network) : m_port(port), m_feed(new EventFeed(port))
{
    m_feed->moveToThread(&network);
    connect(&network, &QThread::finished, m_feed, &QObject::deleteLater);
    // What an earlier box has sent may still be on its way here.
    connect(m_feed, &EventFeed::connected, this, [this](int turn) {
        if (turn == m_turn)
            emit connected();
    });
    connect(m_feed, &EventFeed::messages, this, [this](int turn, const QStringList& texts) {
        for (const QString& text : texts) {
            if (turn == m_turn)
                emit message(text);
        }
    });
    connect(m_feed, &EventFeed::reconnecting, this, [this](int turn, const QString& url) {
        if (turn == m_turn)
            emit reconnecting(url);
    });
    connect(m_feed, &EventFeed::limitPassed, this, &limitReached);
}

void EventSocket::connectTo(const QString& ip)
{
    ++m_turn;
    QMetaObject::invokeMethod(m_feed,
                              [feed = m_feed, ip, turn = m_turn] { feed->connectTo(ip, turn); });
}

EventSockets::EventSockets(QObject* parent)
    : QObject(parent), m_stream(streamPort, m_network), m_media(mediaPort, m_network)
{
    m_network.setObjectName(QStringLiteral("event feeds"));
    m_network.start();
    connect(&m_stream, &EventSocket::message, this, [this](const QString& text) {
        const qint64 ms = recordMsOf(text);
        emit recordTime(recordTimeText(ms));
        emit recordClock(ms);
    });
    connect(&m_stream, &EventSocket::reconnecting, this,
            [this] { emit recordTime(recordTimeText(0)); });
}

EventSockets::~EventSockets()
{
    m_network.quit();
    m_network.wait();
}

void EventSockets::connectTo(const QString& ip)
{
    // What was heard last is another box's, or an earlier connection's.
    emit recordTime(recordTimeText(0));
    m_stream.connectTo(ip);
    m_media.connectTo(ip);
}
