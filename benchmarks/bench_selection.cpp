// SPDX-License-Identifier: MIT
#include "benchmarks/bench_support.h"

#include "common/box_protocol.h"
#include "common/spark_http.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>

namespace
{

const char* const subnet = "127.77.51.0/24";
constexpr int rounds = 30;
constexpr int readsPerSelection = 24;

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// The same reads by one curl, as fast as it can.
double curlMs(const QString& ip, const QStringList& parameters)
{
    QStringList arguments{"--silent", "--parallel", "--parallel-max", "24"};
    for (const QString& parameter : parameters)
        arguments << BoxProtocol::readUrl(ip, parameter) << "-o"
                  << "/dev/null";
    QElapsedTimer clock;
    clock.start();
    QProcess curl;
    curl.start("curl", arguments);
    if (!curl.waitForFinished(20000) || curl.exitCode() != 0)
        qFatal("curl failed");
    return double(clock.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char* argv[])
{
    StartUp::setAttributes();
    QApplication application(argc, argv);
    QTemporaryDir data;
    qputenv("APPDATA", data.path().toUtf8());
    const VirtualNetwork network(subnet, 2,
                                 {"fault 127.77.51.1 slow 5", "fault 127.77.51.2 slow 5"});
    StartUp::dress(application);
    Options options;
    options.sweep = {LAN_FPING, {subnet}};
    options.updateServer = "http://127.77.51.254:9";
    Tarn_Hub window(options);
    window.show();
    auto& view = *window.findChild<TreeView*>("deviceView");
    waitUntil([&] { return view.treeModel()->items("KORA").size() == 2; }, 10000, "the boxes");
    serve(1000);

    int replies = 0;
    QStringList parameters;
    QObject::connect(Spark_Http::instance(), &Spark_Http::S_finished, &window,
                     [&](const QVariantMap& map) {
                         ++replies;
                         if (map.value("body").toString().isEmpty())
                             qFatal("a read failed");
                     });
    for (const char* name :
         {"DeviceName",    "FirmVersion", "HardVersion",    "SdkVersion",   "DiskSpace",
          "MACAddress",    "NDIHXFormat", "NDIEncMode",     "NDIHXQuality", "HXEncProfile",
          "HXControlRate", "NDIName",     "DHCP",           "IPAddress",    "NetMask",
          "NTPServer",     "NDIHDR",      "NDIHXGopLength", "NDIHXBitRate", "SDIVolume",
          "LineinVolume",  "LineinDelay", "NDIDecodeList",  "RecordList"})
        parameters << QStringLiteral("eParam_") + name;

    QVector<double> ours;
    QVector<double> curls;
    GapMeter meter;
    double longestGap = 0;
    for (int round = 0; round < rounds; ++round) {
        Item* box = view.treeModel()->items("KORA").at(round % 2);
        serve(50);
        replies = 0;
        meter.start();
        QElapsedTimer clock;
        clock.start();
        emit view.S_ActionClicked(Action::Select, box);
        waitUntil([&] { return replies >= readsPerSelection; }, 5000, "all values");
        ours << double(clock.nsecsElapsed()) / 1e6;
        meter.stop();
        longestGap = std::max(longestGap, meter.longestMs());
        curls << curlMs(box->address(), parameters);
    }
    report("selecting a box until its last value, median", median(ours), "ms", "near curl's");
    report("the same 24 reads by one curl --parallel, median", median(curls), "ms", "-");
    report("longest gap while a box is selected", longestGap, "ms", "< 50");
    return longestGap < 50 ? 0 : 1;
}
