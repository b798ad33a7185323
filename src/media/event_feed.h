// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QUrl>

class QWebSocket;

/// The connection of one EventSocket. It lives on a thread of the network's, whose window gets no
/// more of what a box sends than a window can show.
class EventFeed : public QObject
{
    Q_OBJECT

public:
    explicit EventFeed(quint16 port);
    ~EventFeed() override;

    /// Leaves the box it was pointed at and connects to the one at `ip`. `turn` marks what is heard
    /// from that one.
    void connectTo(const QString& ip, int turn);

signals:
    void connected(int turn);
    /// What has come since the last time, the newest last; of a flood only the end.
    void messages(int turn, const QStringList& texts);
    void reconnecting(int turn, const QString& url);
    /// The box at `ip` went over `limit`, in plain words.
    void exceeded(const QString& ip, const QString& limit);

private:
    void attempt();
    void drop();
    void greet();
    void checkAlive();
    void checkCost();
    void take(const QString& text);
    void forget();
    void hand();
    void lost();
    void loseOver(const char* limit);

    const quint16 m_port;
    int m_turn = 0;
    QUrl m_url;
    QWebSocket* m_socket = nullptr; ///< a new one for each attempt
    int m_pieces = 0;               ///< of the handshake
    QElapsedTimer m_lastAttempt;
    QTimer m_retry;
    QTimer m_handshake;
    QTimer m_alive;
    QTimer m_hand;
    bool m_isWaitingForPong = false;
    QStringList m_texts;
    qint64 m_chars = 0; ///< of those
};
