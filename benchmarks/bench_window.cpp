// SPDX-License-Identifier: MIT
#include "benchmarks/bench_support.h"

#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"

#include <QApplication>
#include <QWindow>

namespace
{

constexpr int boxCount = 253;
const char* const subnet = "127.77.50.0/24";

int boxesShown(const TreeView& view)
{
    return view.treeModel()->items("KORA").size();
}

} // namespace

int main(int argc, char* argv[])
{
    QElapsedTimer clock;
    clock.start();
    StartUp::setAttributes();
    QApplication application(argc, argv);
    const int seconds = argc > 1 ? qBound(1, atoi(argv[1]), 600) : 60;
    QTemporaryDir data;
    qputenv("APPDATA", data.path().toUtf8());

    qint64 networkMs = clock.elapsed();
    const VirtualNetwork network(subnet, boxCount);
    networkMs = clock.elapsed() - networkMs;

    StartUp::dress(application);
    Options options;
    options.sweep = {LAN_FPING, {subnet}};
    options.updateServer = "http://127.77.50.254:9";
    Tarn_Hub window(options);
    window.show();
    waitUntil([&] { return window.windowHandle() && window.windowHandle()->isExposed(); }, 5000,
              "the window");
    report("start until the window shows", double(clock.elapsed() - networkMs), "ms", "< 1000");

    const auto& view = *window.findChild<TreeView*>("deviceView");
    clock.restart();
    waitUntil([&] { return boxesShown(view) > 0; }, 10000, "the first box");
    report("first box after the window", double(clock.elapsed()), "ms",
           "100 ms delay + first ping + 500");
    GapMeter meter;
    meter.start();
    waitUntil([&] { return boxesShown(view) == boxCount; }, 30000, "all boxes");
    report("all 253 boxes after the window", double(clock.elapsed()), "ms",
           "sweep of 254 x 10 ms + 500");
    report("longest gap while they come", meter.longestMs(), "ms", "< 50");
    meter.stop();

    serve(10000); // the reads of what was found
    const double before = processorSeconds();
    clock.restart();
    serve(seconds * 1000);
    report("processor time of an idle window",
           (processorSeconds() - before) * 100000.0 / double(clock.elapsed()), "%",
           "< 3 of one core");

    meter.start();
    serve(seconds * 1000);
    report("longest gap in normal running", meter.longestMs(), "ms", "< 50");
    report("gaps over 50 ms", meter.gapsOver(50), "", "0");
    return meter.gapsOver(50) == 0 ? 0 : 1;
}
