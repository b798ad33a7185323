// SPDX-License-Identifier: MIT
#include "benchmarks/bench_support.h"

#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"
#include "widgets/message_box.h"

#include <QApplication>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>

namespace
{

constexpr int firstNetwork = 60;
constexpr int networks = 8;
constexpr int boxesEach = 63;
constexpr int strangersEach = 190;
constexpr int spareHost = 254; ///< for the one that moves
constexpr int churnMs = 400;
constexpr int settleMinutes = 2;

QString address(int network, int host)
{
    return QStringLiteral("127.77.%1.%2").arg(firstNetwork + network).arg(host);
}

/// Boxes and strangers of all networks but for the boxes of the first.
void populate(VirtualNetwork& lan)
{
    for (int network = 0; network < networks; ++network) {
        for (int host = 1; network > 0 && host <= boxesEach; ++host)
            lan.command("add " + address(network, host));
        for (int host = boxesEach + 1; host <= boxesEach + strangersEach; ++host) {
            lan.command("add " + address(network, host) + " stranger");
            // Most answer pings and nothing else.
            if (host % 4 != 0)
                lan.command("fault " + address(network, host) + " refuse");
        }
    }
}

/// What goes on in a network for a day, in a few minutes.
class Churn
{
public:
    explicit Churn(VirtualNetwork& lan) : m_lan(lan), m_draw(7) {}

    void step()
    {
        const QString ip = address(m_draw.bounded(networks), 1 + m_draw.bounded(boxesEach));
        switch (m_draw.bounded(6)) {
        case 0:
            m_lan.command("unplug " + ip);
            m_away << ip;
            break;
        case 1:
            m_lan.command("reboot " + ip);
            break;
        case 2:
            m_lan.command("fault " + ip + " slow 1500 times 20");
            break;
        case 3:
            moveOneOrBack();
            break;
        default:
            if (!m_away.isEmpty())
                m_lan.command("plug " + m_away.takeFirst());
        }
    }

private:
    void moveOneOrBack()
    {
        if (m_moved.isEmpty()) {
            m_moved = address(m_draw.bounded(networks), 1 + m_draw.bounded(boxesEach));
            m_at = m_moved.section('.', 0, 2) + '.' + QString::number(spareHost);
            m_lan.command("move " + m_moved + ' ' + m_at);
        } else {
            m_lan.command("move " + m_at + ' ' + m_moved);
            m_moved.clear();
        }
    }

    VirtualNetwork& m_lan;
    QRandomGenerator m_draw;
    QStringList m_away;
    QString m_moved;
    QString m_at;
};

struct Sample {
    double megabytes = 0;
    int files = 0;
    int threads = 0;
    int objects = 0;
};

/// The most of `what` in a part of the samples.
template <class Number>
double most(const QVector<Sample>& samples, Number Sample::*what, int from, int to)
{
    double found = 0;
    for (int n = from; n < to; ++n)
        found = std::max(found, double(samples.at(n).*what));
    return found;
}

Sample take(const Tarn_Hub& window)
{
    return {double(residentBytes()) / (1024 * 1024), openFiles(), threadCount(),
            int(window.findChildren<QObject*>().size())};
}

} // namespace

/// bench_soak [minutes]
int main(int argc, char* argv[])
{
    StartUp::setAttributes();
    QApplication application(argc, argv);
    const int minutes = std::max(settleMinutes + 2, argc > 1 ? QString(argv[1]).toInt() : 120);
    QTemporaryDir data;
    qputenv("APPDATA", data.path().toUtf8());
    VirtualNetwork lan(address(0, 0) + "/24", boxesEach);
    populate(lan);
    StartUp::dress(application);
    Options options;
    QStringList blocks;
    for (int network = 0; network < networks; ++network)
        blocks << address(network, 0) + "/24";
    options.sweep = {LAN_FPING, blocks};
    options.updateServer = "http://" + address(networks, 254) + ":9";
    Tarn_Hub window(options);
    window.show();
    auto& view = *window.findChild<TreeView*>("deviceView");
    const auto count = [&] { return view.treeModel()->items("KORA").size(); };
    waitUntil([&] { return count() >= networks * boxesEach - 5; }, 180000, "the boxes");

    // Whatever is asked meanwhile is answered.
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [] {
        const QWidgetList shown = QApplication::topLevelWidgets();
        for (QWidget* widget : shown) {
            if (auto* box = qobject_cast<messageBox*>(widget); box && box->isVisible())
                box->accept();
        }
    });
    look.start(100);
    Churn churn(lan);
    QTimer change;
    QObject::connect(&change, &QTimer::timeout, &change, [&] { churn.step(); });
    change.start(churnMs);
    QTimer select;
    QObject::connect(&select, &QTimer::timeout, &select, [&] {
        const QList<Item*> boxes = view.treeModel()->items("KORA");
        if (!boxes.isEmpty())
            emit view.S_ActionClicked(Action::Select,
                                      boxes.at(QRandomGenerator::global()->bounded(boxes.size())));
    });
    select.start(3000);

    GapMeter meter;
    meter.start();
    QVector<Sample> samples;
    for (int minute = 0; minute < minutes; ++minute) {
        Sample worst;
        for (int n = 0; n < 12; ++n) {
            serve(5000);
            const Sample now = take(window);
            worst = {std::max(worst.megabytes, now.megabytes), std::max(worst.files, now.files),
                     std::max(worst.threads, now.threads), std::max(worst.objects, now.objects)};
        }
        samples << worst;
        std::printf("%4d min: %4d boxes, %6.1f MB, %3d files, %3d threads, %5d objects, gap %.0f\n",
                    minute + 1, int(count()), worst.megabytes, worst.files, worst.threads,
                    worst.objects, meter.longestMs());
        std::fflush(stdout);
    }
    const int middle = (settleMinutes + minutes) / 2;
    const auto growth = [&](auto what) {
        return most(samples, what, middle, minutes) - most(samples, what, settleMinutes, middle);
    };
    const double memory = growth(&Sample::megabytes);
    const double files = most(samples, &Sample::files, 0, minutes);
    report("open files, most", files, "", "< 300");
    report("memory, second half over the first", memory, "MB", "< 10");
    report("open files, second half over the first", growth(&Sample::files), "", "< 20");
    report("threads, second half over the first", growth(&Sample::threads), "", "< 5");
    report("objects, second half over the first", growth(&Sample::objects), "", "< 50");
    report("longest gap", meter.longestMs(), "ms", "< 50");
    const bool isFlat = memory < 10 && growth(&Sample::files) < 20 &&
                        growth(&Sample::threads) < 5 && growth(&Sample::objects) < 50;
    return isFlat && files < 300 ? 0 : 1;
}
