// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

class QObject;
class QProcess;

/// What differs between operating systems. One source file per system stands behind this header.
namespace Platform
{

/// The folder that holds per-user application data, with "/" as separator and none at the end: of a
/// portable program, beside which lies a file "portable.txt", the folder "data" there; else APPDATA
/// where that variable is set, else the user's standard data location.
QString dataRoot();

/// Where the program `name` ("xdg-open") of the computer is, as an absolute path: on Windows in the
/// application folder or the system's, and everywhere in those folders of the search path that are
/// absolute. Never the current folder, in which anybody may have put a file of that name. Empty
/// when there is none.
QString programPath(const QString& name);
/// All folders with programs, the first one first; `searched` is the search path.
QStringList programFolders(const QStringList& searched);

/// The command tool and the ping-sweep tool: `wanted` when it is not empty, else the one shipped in
/// the application folder, else the one of the computer. When none exists the shipped one's path is
/// returned, so that starting it fails like any other missing program.
QString curlPath();
QString fpingPath(const QString& wanted);

/// The arguments that this program was started with, its own name first, whatever letters are in
/// them. Needs no application object.
QStringList arguments(int argc, char* argv[]);

/// What a child process gets: its arguments, what it reads from its standard input (a file, or
/// these bytes), and the file that its standard output goes to, where it is not read.
struct ChildInput {
    QStringList arguments;
    QByteArray standardInput;
    QString standardInputFile;
    QString standardOutputFile;
    bool appends = false; ///< to that file
    QString folder;       ///< where it is started; empty: here
};

/// Prepares `arguments` of curl so that the data it posts is UTF-8 on the wire, and the files that
/// it reads and writes are those named, on every system.
ChildInput curlInput(const QStringList& arguments);

/// Whether FFmpeg's quick way from rows to rows writes other pixels than it should: FFmpeg 5.1 does
/// so on 64-bit Windows.
bool scalesRowsWrongly();

/// Before anything else in main: what is written to a standard stream that was closed, or whose
/// reader has gone or is busy, neither lands in a file of ours nor ends or holds up the program.
void secureStreams();

/// Calls `asked` once, on a thread of its own, when the system wants the program to end: by a
/// signal, or on Windows by what it sends to a console's programs. Signals that whoever started the
/// program has switched off, as nohup does, stay so. To be called once.
void watchEndSignals(std::function<void()> asked);

/// A child process that ends with the program, however that ends.
QProcess* newTool(QObject* parent);

/// Ends such a tool, in the politest way that it can hear; returns at once.
void askToEnd(QProcess* tool);

/// One without parent that ends only then, too: who ends a whole session or a terminal's programs
/// ends it through the program.
QProcess* newProcess();

/// One that also leaves the processor to the window when both want it: sixty
/// uploads at once must not make the window stutter.
QProcess* newModestProcess();

/// Makes text passed to and read from child processes UTF-8 where the system lets a program choose.
void useUtf8ForChildProcesses();

/// Opens the folder of `path` in the system's file manager, with the file selected where that is
/// possible. Returns at once; false when there is no file manager to start.
bool revealFile(const QString& path);

/// Starts `program` on its own, in `folder`. False when it cannot be started.
bool startDetached(const QString& program, const QStringList& arguments, const QString& folder);

/// Names under which a local server of this program may listen, the best one first: in `folder`,
/// which whoever asks knows too, or where each user has a place of his own for such things. `name`
/// is unlike any other there.
QStringList serverNames(const QString& folder, const QString& name);

/// Lets another program bring its window to the front, which some systems allow only to the program
/// that the user has just started.
void letOthersToFront();

/// What the sandbox of an embedded browser would find here. A browser that needs it and does not
/// get it ends the whole process.
enum class Sandbox {
    Ready,       ///< usable, or switched off on purpose (QTWEBENGINE_DISABLE_SANDBOX)
    RefusesRoot, ///< the process runs as root
    Unavailable, ///< the system gives this process no namespaces of its own
};
Sandbox browserSandbox();

/// The memory that a process of ours keeps, in bytes; 0 when the system does not tell.
qint64 residentBytes(qint64 process);

} // namespace Platform
