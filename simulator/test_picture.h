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

/// FFmpeg as a child that ends with this process, however that ends. Used in one thread, which
/// must live as long as the child.
class FfmpegProcess : public QProcess
{
    Q_OBJECT

public:
    explicit FfmpegProcess(QObject* parent = nullptr);
    ~FfmpegProcess() override; ///< kills the child

    void startWith(const QStringList& arguments);

protected:
    void setupChildProcess() override;
};

} // namespace sim
