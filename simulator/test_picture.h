// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace sim
{

/// FFmpeg's arguments for a small moving test picture with a clock, the text `title` and a tone,
/// up to and including the encoders; the caller adds the duration and the output. `title` may hold
/// letters, digits, dots and blanks only. `realTime`: as fast as it is watched, not as it can.
QStringList testPictureArguments(const QString& title, bool realTime);

/// Starts FFmpeg in `process`; nobody hears what it says.
void startFfmpeg(QProcess* process, const QStringList& arguments);

} // namespace sim
