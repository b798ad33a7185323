// SPDX-License-Identifier: MIT
#include "benchmarks/bench_support.h"

#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDragEnterEvent>
#include <QFile>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <cstdio>

namespace
{

const char* const subnet = "127.77.52.0/24";
constexpr int boxes = 60;
constexpr int packageMb = 32;
/// Bytes a second for each of sixty boxes behind one gigabit port.
constexpr int gigabitShare = 2000000;

void makePackage(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write the package");
    QByteArray megabyte(1024 * 1024, Qt::Uninitialized);
    quint32 seed = 1;
    for (int n = 0; n < packageMb; ++n) {
        for (char& c : megabyte) {
            seed = seed * 1664525u + 1013904223u;
            c = char(seed >> 24);
        }
        file.write(megabyte);
    }
}

/// The same uploads by one curl, as fast as it can.
double curlSeconds(const QString& package)
{
    QStringList arguments{"--silent", "--parallel", "--parallel-immediate", "--parallel-max", "60"};
    for (int host = 1; host <= boxes; ++host) {
        if (host > 1)
            arguments << "--next"
                      << "--silent";
        arguments << "-o"
                  << "/dev/null"
                  << "-F"
                  << "ota_file=@" + package
                  << QStringLiteral("http://127.77.52.%1:8081/upload").arg(host);
    }
    QElapsedTimer clock;
    clock.start();
    QProcess curl;
    curl.start("curl", arguments);
    if (!curl.waitForFinished(300000) || curl.exitCode() != 0)
        qFatal("curl failed: %d", curl.exitCode());
    return double(clock.nsecsElapsed()) / 1e9;
}

void drop(QWidget* area, const QString& path)
{
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(area, &enter);
    QDropEvent event(QPoint(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(area, &event);
}

/// One batch and curl's uploads before it; true when both limits hold.
bool measure(Tarn_Hub& window, const QString& package, const char* link)
{
    auto& view = *window.findChild<TreeView*>("deviceView");
    const auto ready = [&] {
        int known = 0;
        const auto items = view.treeModel()->items("KORA");
        for (const Item* item : items)
            known += item->macAddress().isEmpty() ? 0 : 1;
        return known == boxes;
    };
    waitUntil(ready, 60000, "the boxes");
    serve(3000);
    const double curls = curlSeconds(package);
    serve(3000);
    view.selectAll();
    const auto items = view.treeModel()->items("KORA");
    const auto uploaded = [&] {
        int count = 0;
        for (const Item* item : items)
            count += item->property("upgrade_ota_file").toBool() ? 1 : 0;
        return count;
    };
    drop(window.findChild<QWidget*>("device_list"), package);
    waitUntil([&] { return items.first()->property("upgrading").toBool(); }, 10000, "the answer");
    GapMeter meter;
    meter.start();
    const double processorBefore = processorSeconds();
    QElapsedTimer clock;
    clock.start();
    waitUntil([&] { return uploaded() == boxes; }, 300000, "the uploads");
    const double ours = double(clock.nsecsElapsed()) / 1e9;
    meter.stop();
    const double processor = processorSeconds() - processorBefore;

    std::printf("%s\n", link);
    report("  60 uploads of 32 MB, digest and reads included", ours, "s", "-");
    report("  the same uploads by one curl --parallel", curls, "s", "-");
    report("  ratio", ours / curls, "", "<= 1.1");
    report("  processor time of the window meanwhile", processor, "s", "-");
    report("  longest gap while uploading", meter.longestMs(), "ms", "< 50");
    report("  gaps over 50 ms", meter.gapsOver(50), "", "0");
    return ours / curls <= 1.1 && meter.longestMs() < 50;
}

} // namespace

int main(int argc, char* argv[])
{
    StartUp::setAttributes();
    QApplication application(argc, argv);
    QTemporaryDir data;
    qputenv("APPDATA", data.path().toUtf8());
    const QString package = data.path() + "/KORA_1.2.0.623.dat";
    makePackage(package);
    VirtualNetwork network(subnet, boxes);
    StartUp::dress(application);
    Options options;
    options.sweep = {LAN_FPING, {subnet}};
    options.updateServer = "http://127.77.52.254:9";
    Tarn_Hub window(options);
    window.show();
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, &window, [] {
        if (QWidget* dialog = QApplication::activeModalWidget())
            dialog->findChild<QAbstractButton*>("okpushButton")->click();
    });
    answer.start(20);

    for (int host = 1; host <= boxes; ++host)
        network.command(
            QStringLiteral("fault 127.77.52.%1 throttle %2 on upload").arg(host).arg(gigabitShare));
    const bool good = measure(window, package, "Through a gigabit port, shared by all boxes:");
    for (int host = 1; host <= boxes; ++host)
        network.command(QStringLiteral("clear 127.77.52.%1").arg(host));
    // They come back with their new firmware, and their upgrades let go of them.
    const auto isFree = [](const Item* item) { return item->isOnline() && !item->isOwned(); };
    const auto areFree = [&] {
        const auto items = window.findChild<TreeView*>("deviceView")->treeModel()->items("KORA");
        return items.size() == boxes && std::all_of(items.begin(), items.end(), isFree);
    };
    serve(20000);
    waitUntil(areFree, 120000, "the ends of their upgrades");
    measure(window, package, "As fast as this computer serves the boxes as well:");
    return good ? 0 : 1;
}
