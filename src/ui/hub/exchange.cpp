// SPDX-License-Identifier: MIT
#include "ui/hub/exchange.h"

#include "common/command_runner.h"

#include <QProcess>

namespace
{

constexpr const char* deliveredMark = "delivered";

} // namespace

void Exchange::onResult(const QString& type, ResultHandler handler)
{
    m_results[type] = std::move(handler);
}

void Exchange::onResultPrefix(const QString& prefix, ResultHandler handler)
{
    m_resultPrefixes[prefix] = std::move(handler);
}

void Exchange::onReply(const QString& command, ReplyHandler handler)
{
    m_replies[command] = std::move(handler);
}

void Exchange::onSilence(const QString& command, SilenceHandler handler)
{
    m_silences[command] = std::move(handler);
}

void Exchange::onAction(Action action, ActionHandler handler)
{
    m_actions[action] = std::move(handler);
}

Exchange::ResultHandler Exchange::resultHandler(const QString& type) const
{
    const auto whole = m_results.constFind(type);
    if (whole != m_results.constEnd())
        return *whole;
    for (auto it = m_resultPrefixes.cbegin(); it != m_resultPrefixes.cend(); ++it) {
        if (type.startsWith(it.key()))
            return it.value();
    }
    return nullptr;
}

void Exchange::deliverResult(const QVariantMap& map) const
{
    const ResultHandler handler = resultHandler(HttpResult::typeOf(map));
    if (handler)
        handler(HttpResult::fromMap(map));
}

void Exchange::deliverReply(QProcess& process, const QString& text) const
{
    const BoxReply reply(text);
    // What a box says of another command than the one that it was sent is not believed.
    if (reply.action() != process.property(CommandRunner::ActionProperty).toString())
        return;
    // Before the handler, which may block until after the end of the process.
    process.setProperty(deliveredMark, true);
    if (const ReplyHandler handler = m_replies.value(reply.action()))
        handler(process, reply);
}

void Exchange::deliverEnd(const QProcess& process) const
{
    if (process.property(deliveredMark).toBool())
        return;
    const QString command = process.property(CommandRunner::ActionProperty).toString();
    if (const SilenceHandler handler = m_silences.value(command))
        handler(process);
}

void Exchange::deliverAction(Action action, Item* item) const
{
    const auto it = m_actions.find(action);
    if (it != m_actions.end())
        it->second(item);
}
