// SPDX-License-Identifier: MIT
#pragma once

class Browser;
class QWidget;

/// The way to the browser engine: a library beside the program that is loaded when the first page
/// is to be shown, so that who never opens one neither waits for the engine nor keeps it in memory.
namespace BrowserEngine
{

/// What hinders a browser inside the program.
enum class Obstacle {
    None,
    NotInstalled, ///< its library is not there
    RunsAsRoot,   ///< the engine's sandbox refuses root
    NoIsolation,  ///< the system offers no sandbox to this process
    Incomplete,   ///< its library does not load, or its own program is not where it belongs
};

/// What the process needs before the application object is made.
void prepare();

/// Asks without loading anything. The engine ends the process when it meets one of these.
Obstacle obstacle();

/// Loads the library, starts the engine and makes a browser that `parent` owns; blocks for some
/// tenths of a second the first time. Only without an obstacle. Null when the library does not
/// load; the log says why.
Browser* createBrowser(QWidget* parent);

} // namespace BrowserEngine
