// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

/// What a box answered to a command, and what that means. Text that is no JSON object has every
/// field empty, and so has failed.
class BoxReply
{
public:
    explicit BoxReply(const QString& text);

    /// The command that it answers.
    QString action() const { return field("action"); }
    /// A field of the reply as text, empty when it has none of that name.
    QString field(const char* name) const;

    // Three tests of the one status, each with its own kind of command.
    /// A command that runs on its own, an upload or a deletion has been carried out.
    bool isSuccess() const;
    /// A parameter of the configuration has been written.
    bool isSetSuccess() const;
    /// A step of a sequence, write or command, has been carried out.
    bool containsSuccess() const;

private:
    QString status() const { return field("status"); }

    QVariantMap m_fields;
};
