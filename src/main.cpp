// SPDX-License-Identifier: MIT
#include "common/data_path.h"
#include "common/platform.h"
#include "ui/window/one_instance.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"

#include <QApplication>

#include <cstdio>

namespace
{

constexpr int wrongUsage = 2;
constexpr int folderInUse = 3;

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
    const OptionsResult read = readOptions(Platform::arguments(argc, argv));
    if (read.outcome != OptionsResult::Run)
        return printText(read);

    StartUp::setAttributes();
    QApplication application(argc, argv);
    StartUp::dress(application);
    OneInstance instance(dataPath({}));
    const OneInstance::Outcome outcome = instance.claim();
    if (outcome == OneInstance::Outcome::Told)
        return 0;
    if (outcome == OneInstance::Outcome::Stuck) {
        StartUp::tellStuck();
        return folderInUse;
    }
    Tarn_Hub window(read.options);
    QObject::connect(&instance, &OneInstance::called, &window,
                     [&window] { StartUp::bringToFront(window); });
    StartUp::installCrashHandler();
    window.watchEnds();
    window.show();
    const int exitCode = QApplication::exec();
    StartUp::limitEnd(exitCode);
    return exitCode;
}
