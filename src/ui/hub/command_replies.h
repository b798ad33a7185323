// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QProcess>
#include <QString>
#include <QVariantMap>

#include <functional>

/// Routes the reply of a command that ran on its own to its feature, by the reply's "action".
class CommandReplies
{
public:
    /// `process` carries the properties given when the command was started.
    using Handler = std::function<void(const QProcess& process, const QVariantMap& reply)>;

    void on(const QString& action, Handler handler)
    {
        m_handlers.insert(action, std::move(handler));
    }
    /// `text` is one reply as received; one that is no JSON object, or whose action nobody
    /// registered, is ignored.
    void dispatch(const QProcess& process, const QString& text) const;

private:
    QHash<QString, Handler> m_handlers;
};
