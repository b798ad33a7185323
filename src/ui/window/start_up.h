// SPDX-License-Identifier: MIT
#pragma once

class QApplication;

/// The steps that prepare the process before and around the application object.
namespace StartUp
{

/// High-DPI attributes and what the web view needs; before the application object is made.
void setAttributes();
/// Font, style sheet, icon and name. What is missing is left out without a word.
void dress(QApplication& application);
/// Makes the crash handler, gives it its folder and lets it watch the process.
void installCrashHandler();

} // namespace StartUp
