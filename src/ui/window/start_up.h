// SPDX-License-Identifier: MIT
#pragma once

class QApplication;
class QWidget;

/// The steps that prepare the process before and around the application object.
namespace StartUp
{

/// High-DPI attributes and what the web view needs; before the application object is made.
void setAttributes();
/// Font, style sheet, icon and name. What is missing is left out without a word.
void dress(QApplication& application);
/// Makes the crash handler, gives it its folder and lets it watch the process.
void installCrashHandler();
/// Shows `window` before all others, also when it is minimized.
void bringToFront(QWidget& window);
/// Tells the user that another program has the data folder and does not answer. Blocks.
void tellStuck();
/// The event loop has ended: what is left may take so long, then the process ends all the same. A
/// thread that hangs in a file on a share that is gone would keep it for ever.
void limitEnd(int exitCode, int ms = 700);

} // namespace StartUp
