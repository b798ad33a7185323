// SPDX-License-Identifier: MIT
#pragma once

#include <QHostAddress>
#include <QString>
#include <QStringList>
#include <QVector>

/// An address of this computer, and the network that it is in.
struct OwnAddress {
    QString connection; ///< the system's name of the card
    QHostAddress ip;
    int prefixLength = 0;
    bool isConnected = false; ///< switched on, with its cable in or in reach of its wireless
    bool isLoopback = false;
};

/// The computer's own IPv4 addresses of now.
QVector<OwnAddress> ownAddresses();

/// What the computer's own addresses say of why a box cannot be reached.
struct OwnNetworks {
    enum class Verdict {
        Fit,         ///< it is a neighbour of the box: nothing
        None,        ///< it is in no network at all
        Unplugged,   ///< the card in the box's subnet has no connection
        OtherSubnet, ///< it is in others than the box; a router may still lead there
    };
    Verdict verdict = Verdict::Fit;
    QStringList details; ///< the cards without a connection, or the subnets it is in

    static OwnNetworks judge(const QString& boxIp, const QVector<OwnAddress>& own);
};
