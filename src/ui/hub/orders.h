// SPDX-License-Identifier: MIT
#pragma once

#include <QDeadlineTimer>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

#include <functional>
#include <memory>

class CommandRunner;
class DeviceRegistry;
class Exchange;
class Item;
class QWidget;
class Spark_Http;
struct HttpResult;

/// The box that an order is meant for. An address alone is none: it may have passed on to another
/// box, which nobody may have noticed yet.
struct BoxId {
    QString ip;
    QString mac; ///< empty when it has not told one: then whoever answers at its address is it

    static BoxId of(const Item& box);
};

/// As long as it lives an upgrade of the box waits: what was ordered before it ends before it.
class OrderHold
{
public:
    /// `box` may be null, and go away.
    explicit OrderHold(Item* box);
    ~OrderHold();
    OrderHold(const OrderHold&) = delete;
    OrderHold& operator=(const OrderHold&) = delete;

private:
    const QPointer<Item> m_box;
};

/// How a run of blocking commands ended.
enum class SequenceResult {
    AllSucceeded,
    SomeFailed,
    WindowClosed, ///< the window is gone; nothing more was sent, nobody to tell
};

/// The only way of what the operator orders to a box, apart from deleting recordings, which asks
/// through it: it is asked first who it is, up to three
/// times, and nothing is sent unless it is the one that is meant, stands in the list and no upgrade
/// has it. GUI thread only.
class Orders : public QObject
{
    Q_OBJECT

public:
    struct Ways {
        DeviceRegistry& devices;
        CommandRunner& runner;
        Spark_Http& http;
        Exchange& exchange;
        const QWidget& window; ///< nothing is sent once it is closed
    };

    /// All of them outlive this object.
    explicit Orders(const Ways& ways);

    /// `then` hears, later and unless `context` is gone by then, whether an order to `box` may be
    /// sent right now. Answers come in the order of asking.
    void confirm(const BoxId& box, const QObject* context, std::function<void(bool may)> then);
    /// Sends `command`, as CommandRunner::execCurl() with `properties`. `then` hears, unless
    /// `context` or the window is gone by then, whether it was sent.
    void send(const BoxId& box, const QString& command, const QVariantMap& properties,
              const QObject* context, std::function<void(bool isSent)> then);
    /// Sends `commands` one after the other; a failure does not stop the list. Who answers is asked
    /// before the first command and after each that failed. A command succeeds when the "status" of
    /// its reply contains "success", or equals "set success" when `exact`. Blocks, serving events:
    /// callers hold nothing that may go away.
    SequenceResult run(BoxId box, QStringList commands, bool exact = false);
    /// A list is being sent: ended now, it would leave half of it in the box.
    bool isRunning() const { return m_running > 0; }
    /// Something that was ordered has neither reached its box yet nor been refused.
    bool isUnderWay() const;
    /// `failure`, with a line about it when the last order to `ip` failed because another box
    /// answers there.
    QString explained(const QString& ip, const QString& failure) const;

signals:
    /// Another box answers at `ip` than the list has there, or one whose MAC address was not known.
    void identified(const QString& ip, const QString& mac);

private:
    struct Waiter {
        BoxId box;
        QPointer<const QObject> context;
        std::function<void(bool may)> then;
    };
    /// Asked once for all who wait for the answer.
    struct Question {
        QString id;
        int asked = 0;
        QDeadlineTimer deadline; ///< after which it is not asked again
        QVector<Waiter> waiters;
    };

    void ask(const QString& ip);
    void handleAnswer(const HttpResult& result);
    bool isFree(const QString& ip) const;
    bool mayRun(const BoxId& box);
    SequenceResult sendAll(const BoxId& box, const QStringList& commands, bool exact);

    const Ways m_ways;
    QHash<QString, Question> m_questions; ///< by address
    int m_running = 0;
    QVector<std::weak_ptr<OrderHold>> m_holds; ///< of single orders
    QHash<QString, QString> m_doubts;          ///< by address: why who answered is not meant
};
