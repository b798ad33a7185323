// SPDX-License-Identifier: MIT
#include "ui/devices/own_networks.h"

#include <QNetworkInterface>

QVector<OwnAddress> ownAddresses()
{
    QVector<OwnAddress> own;
    const QList<QNetworkInterface> cards = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& card : cards) {
        const auto flags = card.flags();
        // A card keeps an address that was given by hand when its cable is pulled out.
        const bool isConnected =
            flags.testFlag(QNetworkInterface::IsUp) && flags.testFlag(QNetworkInterface::IsRunning);
        const QList<QNetworkAddressEntry> entries = card.addressEntries();
        for (const QNetworkAddressEntry& entry : entries) {
            if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol)
                own.append({card.humanReadableName(), entry.ip(), entry.prefixLength(), isConnected,
                            flags.testFlag(QNetworkInterface::IsLoopBack)});
        }
    }
    return own;
}

OwnNetworks OwnNetworks::judge(const QString& boxIp, const QVector<OwnAddress>& own)
{
    const QHostAddress box(boxIp);
    QStringList unplugged;
    QStringList subnets;
    for (const OwnAddress& address : own) {
        if (box.isInSubnet(address.ip, address.prefixLength)) {
            if (address.isConnected)
                return {};
            unplugged << address.connection;
        } else if (address.isConnected && !address.isLoopback) {
            subnets << QStringLiteral("%1/%2").arg(address.ip.toString()).arg(address.prefixLength);
        }
    }
    if (!unplugged.isEmpty())
        return {Verdict::Unplugged, unplugged};
    return {subnets.isEmpty() ? Verdict::None : Verdict::OtherSubnet, subnets};
}
