// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// A player's name and the command that plays a source at 1280x720, without the source.
struct Contestant {
    QString name;
    QStringList command;

    QStringList playing(const QString& source) const { return command + QStringList{source}; }
};

/// The players that are installed, this one first.
namespace Contestants
{

inline constexpr const char* Own = "Tarn Hub";

/// They play a film at its pace and end with it, and say what they leave out.
QVector<Contestant> forFilms();
/// The pictures of a film of so many that a player of forFilms() has left out, by its own words.
int leftOut(const QString& said, int pictures);
/// They keep the delay as small as they can.
QVector<Contestant> forLive();
/// How to start the other players that wait until they are told at `socket`.
QVector<Contestant> waiting(const QString& socket);
/// Says which players are missing.
void mentionMissing();

} // namespace Contestants

/// A player as a process, killed in the end.
class PlayerProcess
{
public:
    /// What it says goes to `output`, or nowhere.
    explicit PlayerProcess(const QStringList& command, const QString& output = "/dev/null");
    ~PlayerProcess();
    PlayerProcess(const PlayerProcess&) = delete;
    PlayerProcess& operator=(const PlayerProcess&) = delete;

    /// Waits until it ends by itself; false when it was not well or takes longer.
    bool waitForEnd(int limitMs);
    /// What the ended process has used, in seconds.
    double processorSeconds() const { return m_processorSeconds; }
    qint64 residentKb() const;

private:
    bool collect(int flags);

    int m_pid;
    int m_status = 0;
    double m_processorSeconds = 0;
};
