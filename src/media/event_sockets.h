// SPDX-License-Identifier: MIT
#pragma once

#include "common/limits.h"

#include <QObject>
#include <QStringList>
#include <QThread>

class EventFeed;

/// One feed of a box's event messages. Keeps itself connected to the box it was pointed at.
class EventSocket : public QObject
{
    Q_OBJECT

public:
    /// The longest message taken, in bytes; a longer one ends the connection.
    static constexpr quint64 MessageLimit = Limits::FeedMessageBytes;
    /// The shortest time between two attempts, in milliseconds. The first attempt after a lost
    /// connection is made at once; a box that refuses is asked again at this pace, so that it
    /// cannot keep the computer busy.
    static constexpr int AttemptPaceMs = 250;

    /// Its connection lives on `network`, and ends with that.
    EventSocket(quint16 port, QThread& network);

    quint16 port() const { return m_port; }
    /// Leaves the box it was pointed at and connects to the one at `ip`.
    void connectTo(const QString& ip);

signals:
    void connected();
    void message(const QString& text);
    /// The connection is gone, or could not be made; another attempt to `url` follows.
    void reconnecting(const QString& url);

private:
    const quint16 m_port;
    EventFeed* m_feed;
    int m_turn = 0;
};

/// The two feeds of the selected box.
class EventSockets : public QObject
{
    Q_OBJECT

public:
    explicit EventSockets(QObject* parent = nullptr);
    ~EventSockets() override;

    /// Points both feeds at the box at `ip`, the stream feed first.
    void connectTo(const QString& ip);

    EventSocket& stream() { return m_stream; }
    EventSocket& media() { return m_media; }

signals:
    /// The running recording time, "hh:mm:ss.zzz"; zero when there is none or the feed is lost.
    void recordTime(const QString& text);
    /// The same with every message of the stream feed, in milliseconds; 0 when it carries none.
    void recordClock(qint64 ms);

private:
    QThread m_network;
    EventSocket m_stream;
    EventSocket m_media;
};
