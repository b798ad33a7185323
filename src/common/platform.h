// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class QProcess;

/// What differs between operating systems. One source file per system stands behind this header.
namespace Platform
{

/// The folder that holds per-user application data, with "/" as separator and none at the end:
/// APPDATA where that variable is set, else the user's standard data location.
QString dataRoot();

/// The ping-sweep tool: `wanted` when it is not empty, else the one shipped in the application
/// folder, else the one on the search path. When none exists the shipped one's path is returned,
/// so that starting it fails like any other missing program.
QString fpingPath(const QString& wanted);

/// What a child process gets: its arguments, and what it reads from its standard input.
struct ChildInput {
    QStringList arguments;
    QByteArray standardInput;
};

/// Prepares `arguments` of curl so that the data it posts is UTF-8 on the wire on every system.
ChildInput curlInput(const QStringList& arguments);

/// A child process without parent that leaves the processor to the window when both want it: sixty
/// uploads at once must not make the window stutter.
QProcess* newModestProcess();

/// Makes text passed to and read from child processes UTF-8 where the system lets a program choose.
void useUtf8ForChildProcesses();

/// Opens the folder of `path` in the system's file manager, with the file selected where that is
/// possible. Returns at once; false when there is no file manager to start.
bool revealFile(const QString& path);

/// Starts `program` on its own, in `folder`. False when it cannot be started.
bool startDetached(const QString& program, const QStringList& arguments, const QString& folder);

/// What the sandbox of an embedded browser would find here. A browser that needs it and does not
/// get it ends the whole process.
enum class Sandbox {
    Ready,       ///< usable, or switched off on purpose (QTWEBENGINE_DISABLE_SANDBOX)
    RefusesRoot, ///< the process runs as root
    Unavailable, ///< the system gives this process no namespaces of its own
};
Sandbox browserSandbox();

} // namespace Platform
