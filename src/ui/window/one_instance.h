// SPDX-License-Identifier: MIT
#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QStringList>

/// One program for a data folder: two would upload to the same boxes and write the same files. The
/// first has a lock in the folder for as long as it lives; a later one has it come to the front.
///
/// The lock goes by the system's lock on the file, so that whatever a killed program has left there
/// holds nobody up. Only the same user can connect, and all that does is to call.
class OneInstance : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        First, ///< this program has the folder, or nobody can have it as it cannot be written to
        Told,  ///< another one has it, and has been called
        Stuck, ///< another one has it and does not answer
    };

    /// `folder` is the data folder and ends in "/".
    explicit OneInstance(QString folder);

    /// Blocks, before there is a window: gives a program that is just ending, or starting, as long
    /// as `patienceMs`.
    Outcome claim(int patienceMs = 5000);

    /// Where the first one hears others, best first, as QLocalServer takes it.
    QStringList names() const;

signals:
    /// Another program wants to have this one in front.
    void called();

private:
    void listen();
    void answer();
    bool call(int patienceMs) const;

    const QString m_folder;
    QLockFile m_lock;
    QLocalServer m_server;
};
