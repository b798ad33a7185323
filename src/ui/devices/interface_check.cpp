// SPDX-License-Identifier: MIT
#include "ui/devices/interface_check.h"

#include "common/box_protocol.h"
#include "common/spark_http.h"
#include "device/item.h"
#include "ui/hub/exchange.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QTimer>

namespace
{

using Outcome = InterfaceFinding::Outcome;

constexpr quint16 apiPort = 8081;
constexpr quint16 webPort = 80;
constexpr int firstError = 400;

} // namespace

InterfaceCheck::InterfaceCheck(const Hub& hub) : QObject(nullptr), m_hub(hub)
{
    hub.exchange.onResult(requestType(), [this](const HttpResult& result) { handleReply(result); });
}

bool InterfaceCheck::ask(const Item& box)
{
    const QString ip = box.address();
    if (m_asked.contains(ip) || m_asked.size() >= MostAtOnce)
        return false;
    const quint16 port = box.isKora() ? apiPort : webPort;
    m_asked.insert(ip, port);
    // A GET that fails does not tell whether the port is closed or nobody is there.
    auto* socket = new QTcpSocket(this);
    socket->setProxy(QNetworkProxy::NoProxy);
    auto* limit = new QTimer(socket);
    const auto close = [this, socket, limit] {
        limit->stop();
        socket->disconnect(this);
        socket->disconnectFromHost();
        socket->deleteLater();
    };
    const auto fail = [this, ip, close](Outcome outcome) {
        close();
        end(ip, outcome);
    };
    connect(socket, &QTcpSocket::connected, this, [this, ip, close] {
        close();
        read(ip);
    });
    connect(socket, &QTcpSocket::errorOccurred, this, [fail](QAbstractSocket::SocketError error) {
        const bool isRefused = error == QAbstractSocket::ConnectionRefusedError;
        fail(isRefused ? Outcome::Refused : Outcome::NoAnswer);
    });
    connect(limit, &QTimer::timeout, this, [fail] { fail(Outcome::NoAnswer); });
    limit->setSingleShot(true);
    limit->start(ConnectLimitMs);
    socket->connectToHost(QHostAddress(ip), port);
    return true;
}

void InterfaceCheck::read(const QString& ip)
{
    const QString url = m_asked.value(ip) == apiPort
                            ? BoxProtocol::readUrl(ip, BoxProtocol::DeviceName)
                            : BoxProtocol::dashboardUrl(ip);
    m_hub.http.get(requestType(), url, false);
}

void InterfaceCheck::handleReply(const HttpResult& result)
{
    const QString ip = result.deviceIp;
    // A page says nothing of parameters.
    const bool isUnderstood =
        m_asked.value(ip) == apiPort ? !result.parameterName.isEmpty() : !result.body.isEmpty();
    if (result.httpStatus >= firstError)
        end(ip, Outcome::HttpError, result.httpStatus);
    else if (isUnderstood)
        end(ip, Outcome::Answers);
    else
        end(ip, result.httpStatus ? Outcome::NotUnderstood : Outcome::NoReply);
}

void InterfaceCheck::end(const QString& ip, Outcome outcome, int httpStatus)
{
    const quint16 port = m_asked.take(ip);
    if (port != 0)
        emit ended(ip, {outcome, port, httpStatus});
}
