// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QHash>
#include <QObject>

struct HttpResult;

/// What came of asking a box's interface once.
struct InterfaceFinding {
    enum class Outcome {
        Unknown,       ///< not asked
        NoAnswer,      ///< its port cannot be reached
        Refused,       ///< somebody is there, but the port is closed
        NoReply,       ///< no whole reply in time
        HttpError,     ///< the reply is an error
        NotUnderstood, ///< the reply is something else than a box's
        Answers,
    };
    Outcome outcome = Outcome::Unknown;
    quint16 port = 0;
    int httpStatus = 0; ///< of an error

    /// It is known that something is wrong.
    bool isFault() const { return outcome != Outcome::Unknown && outcome != Outcome::Answers; }
};

/// Asks the interface of a box whether it answers: one connection to its port, and when that stands
/// one read of what the program reads of every box anyway. Blocks nobody. GUI thread only.
class InterfaceCheck : public QObject
{
    Q_OBJECT

public:
    /// Boxes asked at a time.
    static constexpr int MostAtOnce = 8;
    /// Milliseconds for a connection. Windows needs two seconds for one that is refused.
    static constexpr int ConnectLimitMs = 3000;

    explicit InterfaceCheck(const Hub& hub);

    /// False when it is not asked, as it is being asked or as too many are. Else `ended` follows.
    bool ask(const Item& box);

    /// The routing word of its reads.
    static QString requestType() { return QStringLiteral("interfaceCheck"); }

signals:
    void ended(const QString& ip, const InterfaceFinding& finding);

private:
    void read(const QString& ip);
    void handleReply(const HttpResult& result);
    void end(const QString& ip, InterfaceFinding::Outcome outcome, int httpStatus = 0);

    const Hub m_hub;
    QHash<QString, quint16> m_asked; ///< by address: the port
};
