// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <functional>

class QCoreApplication;

/// How a program without a window is spoken to and ended.
namespace sim::console
{

/// The program ends when it is asked to: by a signal, or by its console on Windows.
void quitWhenAsked(QCoreApplication* app);
/// The program ends soon after this process has.
void quitWith(qint64 process, QCoreApplication* app);
/// Hands over each line of standard input, without its end, on the application's thread. The end of
/// the input is not the end of the program.
void readLines(std::function<void(const QByteArray&)> take, QCoreApplication* app);
/// Unlike that of other users of this computer.
QByteArray userName();

} // namespace sim::console
