// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace sim
{

class VirtualLan;

/// The line commands of kora-lan and of a scenario's steps: "unplug 127.77.0.11".
class LanCommands
{
public:
    explicit LanCommands(VirtualLan* lan);

    /// What a command line did.
    struct Answer {
        bool ok = true;
        bool quit = false; ///< the command was "quit"
        QString text;      ///< for people; may have several lines; may be empty
    };
    Answer run(const QString& line);
    /// All commands, for people.
    static QString help();

private:
    Answer onBox(const QString& command, const QString& address, const QStringList& rest);
    Answer add(const QString& address, const QString& model);
    Answer list() const;

    VirtualLan* const m_lan;
};

} // namespace sim
