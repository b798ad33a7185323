// SPDX-License-Identifier: MIT
#include "common/platform.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"

#include <QApplication>

#include <cstdio>

namespace
{

constexpr int wrongUsage = 2;

int printText(const OptionsResult& result)
{
    const bool error = result.outcome == OptionsResult::Error;
    std::fputs(result.text.toLocal8Bit().constData(), error ? stderr : stdout);
    return error ? wrongUsage : 0;
}

} // namespace

int main(int argc, char* argv[])
{
    Platform::secureStreams();
    // Read first: asking for help needs no display.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const OptionsResult read = readOptions(arguments);
    if (read.outcome != OptionsResult::Run)
        return printText(read);

    StartUp::setAttributes();
    QApplication application(argc, argv);
    StartUp::dress(application);
    Options options = read.options;
    options.sweep.fping = Platform::fpingPath(options.sweep.fping);
    Tarn_Hub window(options);
    StartUp::installCrashHandler();
    window.watchEnds();
    window.show();
    const int exitCode = QApplication::exec();
    StartUp::limitEnd(exitCode);
    return exitCode;
}
