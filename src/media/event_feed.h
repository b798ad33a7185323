// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QUrl>

class QAbstractSocket;
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
    /// `who`, an address, went over `what`; once for each turn.
    void limitPassed(const QString& who, const QString& what);

private:
    void attempt();
    void drop();
    void greet();
    void watch(const QAbstractSocket& wire);
    void checkAlive();
    void closed();
    void take(const QString& text);
    void forget();
    void hand();
    void lost();
    void tell(const QString& what);

    const quint16 m_port;
    int m_turn = 0;
    QUrl m_url;
    QWebSocket* m_socket = nullptr; ///< a new one for each attempt
    QElapsedTimer m_lastAttempt;
    QTimer m_retry;
    QTimer m_handshake;
    QTimer m_alive;
    QTimer m_hand;
    bool m_isWaitingForPong = false;
    int m_looks = 0; ///< at the answer to the handshake
    QSet<QString> m_told;
    QStringList m_texts;
    qint64 m_chars = 0; ///< of those
};
