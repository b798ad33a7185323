// SPDX-License-Identifier: MIT
#include "ui/hub/orders.h"

#include "common/box_protocol.h"
#include "common/box_reply.h"
#include "common/command_runner.h"
#include "common/http_result.h"
#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/hub/exchange.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <QWidget>

#include <algorithm>

namespace
{

const QString requestType = QStringLiteral("orderIdentity");
/// One lost answer must not fail an order; an operator who waits for it must not wait long.
constexpr int mostQuestions = 3;
constexpr int questionPauseMs = 200;
/// After so long nothing is asked again.
constexpr qint64 askingMs = 5000;

} // namespace

OrderHold::OrderHold(Item* box) : m_box(box)
{
    if (m_box)
        m_box->countOrders(1);
}

OrderHold::~OrderHold()
{
    if (m_box)
        m_box->countOrders(-1);
}

BoxId BoxId::of(const Item& box)
{
    return {box.address(), box.macAddress()};
}

Orders::Orders(const Ways& ways) : QObject(nullptr), m_ways(ways)
{
    ways.exchange.onResult(requestType, [this](const HttpResult& result) { handleAnswer(result); });
}

void Orders::confirm(const BoxId& box, const QObject* context, std::function<void(bool may)> then)
{
    m_doubts.remove(box.ip);
    if (!isFree(box.ip)) {
        QTimer::singleShot(0, context, [then = std::move(then)] { then(false); });
        return;
    }
    // Those who come while it is asked wait for the same answer, or a later order might overtake an
    // earlier one.
    Question& question = m_questions[box.ip];
    question.waiters << Waiter{box, context, std::move(then)};
    if (question.waiters.size() == 1) {
        question.deadline.setRemainingTime(askingMs);
        ask(box.ip);
    }
}

void Orders::ask(const QString& ip)
{
    Question& question = m_questions[ip];
    ++question.asked;
    question.id =
        m_ways.http.getFirst(requestType, BoxProtocol::readUrl(ip, BoxProtocol::MACAddress));
}

void Orders::handleAnswer(const HttpResult& result)
{
    const QString ip = result.deviceIp;
    const Question question = m_questions.value(ip);
    if (question.id != result.id)
        return;
    const bool hasAnswered =
        result.isRefusal() ||
        (result.value.isValid() && result.parameterName == BoxProtocol::MACAddress);
    if (!hasAnswered && question.asked < mostQuestions && !question.deadline.hasExpired()) {
        QTimer::singleShot(questionPauseMs, this, [this, ip] { ask(ip); });
        return;
    }
    m_questions.remove(ip);
    const QString mac = result.value.toString();
    const Item* row = m_ways.devices.model().find(ip);
    if (row && BoxProtocol::isMacAddress(mac) && !BoxProtocol::isSameMac(mac, row->macAddress()))
        emit identified(ip, mac);
    m_doubts.remove(ip);
    for (const Waiter& waiter : question.waiters) {
        if (!waiter.context)
            continue;
        const bool isNamed = BoxProtocol::isMacAddress(mac);
        const bool isSame = BoxProtocol::isSameMac(mac, waiter.box.mac);
        // Of a box that never told its MAC address nobody can say that this is another one, as long
        // as it tells none.
        const bool isMeant = isSame || (waiter.box.mac.isEmpty() && hasAnswered && !isNamed);
        if (isNamed && !isSame)
            m_doubts.insert(ip, waiter.box.mac.isEmpty()
                                    ? tr("此地址上的设备现在才告知MAC地址，请确认后重试。")
                                    : tr("此地址上现在是另一台设备。"));
        // Each on its own: one may block, and the answer would be old for the next.
        QTimer::singleShot(0, waiter.context, [this, waiter, isMeant] {
            waiter.then(isMeant && isFree(waiter.box.ip) && m_ways.window.isVisible());
        });
    }
}

/// Of a box that has left the list nobody knows whether an upgrade has it.
bool Orders::isFree(const QString& ip) const
{
    const Item* row = m_ways.devices.model().find(ip);
    // One that is to be upgraded next waits for what was ordered before.
    return row && !row->isTaken() && (row->isOrdered() || !row->isUpgrading());
}

void Orders::send(const BoxId& box, const QString& command, const QVariantMap& properties,
                  const QObject* context, std::function<void(bool isSent)> then)
{
    auto hold =
        std::make_shared<OrderHold>(isFree(box.ip) ? m_ways.devices.model().find(box.ip) : nullptr);
    m_holds << hold;
    confirm(box, context,
            [this, ip = box.ip, command, properties, then = std::move(then),
             hold = std::move(hold)](bool may) mutable {
                auto held = std::move(hold);
                if (!m_ways.window.isVisible())
                    return;
                QPointer<QProcess> process;
                if (may)
                    process = m_ways.runner.execCurl(ip, command, properties);
                if (process)
                    connect(process, &QObject::destroyed, process, [held] {});
                // What follows may be a message, and stand for hours.
                held.reset();
                then(may);
            });
    const auto isOver = [](const std::weak_ptr<OrderHold>& hold) { return hold.expired(); };
    m_holds.erase(std::remove_if(m_holds.begin(), m_holds.end(), isOver), m_holds.end());
}

bool Orders::isUnderWay() const
{
    return isRunning() || std::any_of(m_holds.begin(), m_holds.end(),
                                      [](const auto& hold) { return !hold.expired(); });
}

QString Orders::explained(const QString& ip, const QString& failure) const
{
    const QString doubt = m_doubts.value(ip);
    return doubt.isEmpty() ? failure : failure + QLatin1Char('\n') + doubt;
}

/// Blocks, serving events.
bool Orders::mayRun(const BoxId& box)
{
    bool mayRun = false;
    QEventLoop loop;
    confirm(box, &loop, [&](bool may) {
        mayRun = may;
        loop.quit();
    });
    loop.exec();
    return mayRun;
}

SequenceResult Orders::run(BoxId box, QStringList commands, bool exact)
{
    ++m_running;
    const OrderHold hold(isFree(box.ip) ? m_ways.devices.model().find(box.ip) : nullptr);
    const SequenceResult result = sendAll(box, commands, exact);
    --m_running;
    return m_ways.window.isVisible() ? result : SequenceResult::WindowClosed;
}

SequenceResult Orders::sendAll(const BoxId& box, const QStringList& commands, bool exact)
{
    bool allSucceeded = true;
    bool isSure = false;
    for (const QString& command : commands) {
        // An address passes on only while nobody answers at it.
        isSure = isSure || mayRun(box);
        // An upgrade may have taken the box meanwhile: nobody else may tell it anything.
        if (!isSure || !isFree(box.ip) || !m_ways.window.isVisible())
            return SequenceResult::SomeFailed;
        QElapsedTimer since;
        since.start();
        const BoxReply reply(m_ways.runner.execCurlWait(box.ip, command));
        const bool succeeded = exact ? reply.isSetSuccess() : reply.containsSuccess();
        allSucceeded &= succeeded;
        // A message that opened meanwhile may have stood there for any length of time.
        isSure = succeeded && since.elapsed() <= CommandRunner::WaitLimitMs;
    }
    return allSucceeded ? SequenceResult::AllSucceeded : SequenceResult::SomeFailed;
}
