// SPDX-License-Identifier: MIT
#include "web/engine/page_hosts.h"

#include "common/limits.h"

#include <QHostAddress>
#include <QNetworkInterface>
#include <QUrl>

namespace
{

/// What a page makes by itself, and the engine's own pages: nothing of it goes over the network.
bool staysInside(const QUrl& url)
{
    static const QStringList inside{QStringLiteral("about"), QStringLiteral("blob"),
                                    QStringLiteral("data"), QStringLiteral("chrome-error"),
                                    QStringLiteral("chrome-extension")};
    return inside.contains(url.scheme());
}

bool isWeb(const QUrl& url)
{
    static const QStringList web{QStringLiteral("http"), QStringLiteral("https"),
                                 QStringLiteral("ws"), QStringLiteral("wss")};
    return web.contains(url.scheme());
}

/// By name or by address; what other names stand for is not looked up.
bool isThisComputer(const QString& host)
{
    if (host == QLatin1String("localhost") || host.endsWith(QLatin1String(".localhost")) ||
        host.endsWith(QLatin1String("localhost.")))
        return true;
    QHostAddress address(host);
    bool isOld = false;
    const quint32 old = address.toIPv4Address(&isOld);
    if (isOld)
        address.setAddress(old);
    return !address.isNull() && (address.isLoopback() || (isOld && old >> 24 == 0) ||
                                 address == QHostAddress(QHostAddress::AnyIPv6) ||
                                 QNetworkInterface::allAddresses().contains(address));
}

} // namespace

void PageHosts::begin(const QUrl& url)
{
    m_allowed = QStringList{url.host()};
    m_asked.clear();
}

bool PageHosts::mayReach(const QUrl& url)
{
    const QString host = url.host();
    if (staysInside(url))
        return true;
    if (!isWeb(url) || host.isEmpty())
        return false;
    if (m_allowed.contains(host))
        return true;
    // Where the boxes are on this computer themselves, it is one host among others.
    if (isThisComputer(host) && !isThisComputer(m_allowed.value(0)))
        return false;
    if (m_asked.contains(host) || m_asked.size() >= Limits::PageHostQuestions)
        return false;
    m_asked << host;
    emit wanted(host);
    return false;
}

QString PageHosts::policy() const
{
    QString policy = QStringLiteral("connect-src http: https: data: blob:");
    for (const QString& host : m_allowed) {
        const bool isNew = host.contains(QLatin1Char(':'));
        const QString place = isNew ? QStringLiteral("[%1]").arg(host) : host;
        policy += QStringLiteral(" ws://%1:* wss://%1:*").arg(place);
    }
    return policy;
}

void PageHosts::interceptRequest(QWebEngineUrlRequestInfo& info)
{
    // What a page of the visit before has begun on leaving may not reach the box of this one.
    const QString asker = info.initiator().host();
    const bool isOfThisVisit = asker.isEmpty() || m_allowed.contains(asker);
    if (!isOfThisVisit || !mayReach(info.requestUrl()))
        info.block(true);
}
