// SPDX-License-Identifier: MIT
#pragma once

#include "common/box_reply.h"
#include "common/http_result.h"
#include "device/action.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <map>

class Item;
class QProcess;

/// Where everything that comes in goes: the answer to a read by the word of its request, the reply
/// to a command by the command's name, a click by its code. Each feature registers its own words,
/// beside where it sends them; what nobody registered is ignored. GUI thread only.
class Exchange
{
public:
    using ResultHandler = std::function<void(const HttpResult& result)>;
    /// `process` carries the properties given when the command was started.
    using ReplyHandler = std::function<void(const QProcess& process, const BoxReply& reply)>;
    /// `process` has ended without a reply to its command.
    using SilenceHandler = std::function<void(const QProcess& process)>;
    /// `item` is the clicked row, or null.
    using ActionHandler = std::function<void(Item* item)>;

    void onResult(const QString& type, ResultHandler handler);
    /// For every type that begins with `prefix` and that nobody registered whole.
    void onResultPrefix(const QString& prefix, ResultHandler handler);
    void onReply(const QString& command, ReplyHandler handler);
    /// For commands of which somebody has to say that they were never answered.
    void onSilence(const QString& command, SilenceHandler handler);
    void onAction(Action action, ActionHandler handler);

    // A handler may block, serving events: what is delivered is not touched afterwards.
    /// `map` is what Spark_Http::S_finished carries.
    void deliverResult(const QVariantMap& map) const;
    /// `text` is one reply as received; one that is no JSON object, or answers another command than
    /// the one of `process`, is ignored.
    void deliverReply(QProcess& process, const QString& text) const;
    /// `process` is not running any more.
    void deliverEnd(const QProcess& process) const;
    void deliverAction(Action action, Item* item) const;

private:
    ResultHandler resultHandler(const QString& type) const;

    QHash<QString, ResultHandler> m_results;
    QMap<QString, ResultHandler> m_resultPrefixes;
    QHash<QString, ReplyHandler> m_replies;
    QHash<QString, SilenceHandler> m_silences;
    std::map<Action, ActionHandler> m_actions;
};
