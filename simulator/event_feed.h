// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/faults.h"

#include <QMap>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>

class QTcpServer;
class QWebSocket;
class QWebSocketServer;

namespace sim
{

/// One of a box's two WebSocket feeds. A client gets messages once it has sent "hx_meta=on".
/// Lives in the simulator's thread; listeners() may be asked from any thread.
class EventFeed : public QObject
{
    Q_OBJECT

public:
    /// `messages` is asked ten times a second, while anybody listens, what there is to send; its
    /// argument counts the calls.
    EventFeed(FaultList* faults, std::function<QStringList(int tick)> messages,
              QObject* parent = nullptr);
    ~EventFeed() override;

    /// False when the port cannot be opened.
    bool open(const QString& address, quint16 port);
    /// Closes the port and drops all clients, as when the power fails.
    void close();
    /// Drops the clients; the port stays open.
    void dropClients();
    /// Sends a text to all who listen.
    void send(const QString& text);

    int listeners() const; ///< clients that have asked for messages

private:
    void greet();
    void accept();
    void forget(QWebSocket* client);
    void tick();
    void setListening(QWebSocket* client, bool listens);

    FaultList* const m_faults;
    const std::function<QStringList(int)> m_messages;
    std::unique_ptr<QTcpServer> m_port;
    std::unique_ptr<QWebSocketServer> m_server; ///< of those that m_port lets in
    QMap<QWebSocket*, bool> m_clients;          // whether it listens
    QTimer m_timer;
    int m_ticks = 0;
    qint64 m_flooded = 0; // messages since the flood began
    std::atomic<int> m_listeners{0};
};

} // namespace sim
