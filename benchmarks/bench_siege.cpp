// SPDX-License-Identifier: MIT
#include "benchmarks/bench_support.h"

#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"
#include "widgets/message_box.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDirIterator>

#include <algorithm>
#include <cstdio>

namespace
{

const QString block = QStringLiteral("127.77.52.");
constexpr int goodBoxes = 60;
constexpr int firstHostile = 61;
constexpr int hostileBoxes = 3;
constexpr int strangers = 190;
constexpr int calmSaves = 20;
constexpr qint64 megabyte = 1024 * 1024;

QString address(int host)
{
    return block + QString::number(host);
}

/// What the strangers do, in turns.
const QStringList& manners()
{
    static const QStringList all{"",
                                 "huge-head 5000",
                                 "huge-head 0",
                                 "endless",
                                 "endless 2000",
                                 "packed 100000000",
                                 "throttle 1",
                                 "silent",
                                 "hang-up 50",
                                 "huge 10000000",
                                 "garbage",
                                 "text",
                                 "stall 50",
                                 "http-error 500"};
    return all;
}

/// What the boxes that are taken for boxes do.
const QStringList& treacheries()
{
    static const QStringList all{"throttle 1 on eParam_RecordList",
                                 "endless on eParam_NDIName",
                                 "huge 900000 on eParam_RecordList",
                                 "text on eParam_NTPServer",
                                 "huge 60000 on eParam_DeviceName",
                                 "chatter 0 on record_on",
                                 "endless on hxenc_on",
                                 "flood 20000",
                                 "huge-message 20000000",
                                 "endless-handshake",
                                 "huge-head 0 on eParam_NDIDecodeList",
                                 "misnamed on record_on as reboot"};
    return all;
}

QStringList besiege()
{
    QStringList lines;
    for (int n = 0; n < hostileBoxes; ++n) {
        lines << "add " + address(firstHostile + n);
        for (int k = n; k < treacheries().size(); k += hostileBoxes)
            lines << "fault " + address(firstHostile + n) + ' ' + treacheries().at(k);
    }
    for (int n = 0; n < strangers; ++n) {
        const QString ip = address(firstHostile + hostileBoxes + n);
        const QString manner = manners().at(n % manners().size());
        lines << "add " + ip + " stranger";
        if (!manner.isEmpty())
            lines << "fault " + ip + ' ' + manner;
    }
    return lines;
}

qint64 bytesIn(const QString& folder)
{
    qint64 all = 0;
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        all += files.fileInfo().size();
    }
    return all;
}

double at(QVector<double> values, double part)
{
    if (values.isEmpty())
        return 0;
    std::sort(values.begin(), values.end());
    return values.at(int(double(values.size() - 1) * part));
}

/// The operator: selects boxes, saves, and answers what he is told.
class Operator
{
public:
    explicit Operator(Tarn_Hub& window)
        : m_window(window), m_view(*window.findChild<TreeView*>("deviceView"))
    {
        m_look.setInterval(1);
        QObject::connect(&m_look, &QTimer::timeout, &m_look, [this] { answer(); });
        m_look.start();
    }

    int known() const
    {
        int count = 0;
        for (int host = 1; host <= goodBoxes; ++host) {
            const Item* box = m_view.treeModel()->find(address(host));
            count += box && !box->macAddress().isEmpty() ? 1 : 0;
        }
        return count;
    }
    void select(int host)
    {
        if (Item* box = m_view.treeModel()->find(address(host)))
            emit m_view.S_ActionClicked(Action::Select, box);
    }
    /// Milliseconds until the window says how it went; below 0 when not well.
    double save()
    {
        m_said.clear();
        QElapsedTimer clock;
        clock.start();
        m_window.findChild<QAbstractButton*>("save")->click();
        waitUntil([this] { return !m_said.isEmpty(); }, 60000, "the word about saving");
        const double ms = double(clock.nsecsElapsed()) / 1e6;
        if (m_said.startsWith(QString::fromUtf8("设置参数成功")))
            return ms;
        std::printf("%s\n", qPrintable(m_said));
        return -1;
    }
    /// Clicks what makes a command.
    void press(const char* name)
    {
        if (auto* button = m_window.findChild<QAbstractButton*>(name))
            button->click();
    }

private:
    void answer()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<messageBox*>(widget);
            if (!box || !box->isVisible())
                continue;
            // What is told of the hostile boxes' recordings may come in the middle of a save.
            if (box->text().contains(QString::fromUtf8("设置参数")))
                m_said = box->text();
            box->accept();
        }
    }

    Tarn_Hub& m_window;
    TreeView& m_view;
    QTimer m_look;
    QString m_said;
};

struct Saves {
    QVector<double> ms;
    int failed = 0;

    void add(double one)
    {
        if (one < 0)
            ++failed;
        else
            ms << one;
    }
};

} // namespace

/// bench_siege [minutes]
int main(int argc, char* argv[])
{
    StartUp::setAttributes();
    QApplication application(argc, argv);
    const double minutes = argc > 1 ? QString(argv[1]).toDouble() : 30;
    QTemporaryDir data;
    qputenv("APPDATA", data.path().toUtf8());
    VirtualNetwork network(block + "0/24", goodBoxes);
    StartUp::dress(application);
    Options options;
    options.sweep = {LAN_FPING, {block + "0/24"}};
    options.updateServer = "http://" + address(254) + ":9";
    Tarn_Hub window(options);
    window.show();
    Operator person(window);
    waitUntil([&] { return person.known() == goodBoxes; }, 60000, "the boxes");
    serve(5000);

    GapMeter meter;
    const auto saveOne = [&](int host) {
        person.select(host);
        serve(1500);
        return person.save();
    };
    Saves calm;
    meter.start();
    qint64 memory = 0;
    for (int n = 0; n < calmSaves; ++n) {
        calm.add(saveOne(n % goodBoxes + 1));
        memory = std::max(memory, residentBytes());
    }
    meter.stop();
    const double calmGap = meter.longestMs();

    for (const QString& line : besiege())
        network.command(line);
    QElapsedTimer clock;
    clock.start();
    Saves siege;
    qint64 most = 0;
    int mostFiles = 0;
    meter.start();
    for (int n = 0; double(clock.elapsed()) < minutes * 60000; ++n) {
        person.select(firstHostile + n % hostileBoxes);
        serve(1500);
        person.press("recode");
        serve(500);
        siege.add(saveOne(n % goodBoxes + 1));
        most = std::max(most, residentBytes());
        mostFiles = std::max(mostFiles, openFiles());
    }
    meter.stop();

    const double grown = double(most - memory) / megabyte;
    const double logs = double(bytesIn(data.path())) / megabyte;
    const double ratio = at(siege.ms, 0.5) / at(calm.ms, 0.5);
    report("saves in calm, median", at(calm.ms, 0.5), "ms", "-");
    report("saves under siege, median", at(siege.ms, 0.5), "ms", "-");
    report("saves under siege, of twenty the slowest", at(siege.ms, 0.95), "ms", "-");
    report("saves under siege", siege.ms.size(), "", "-");
    report("saves that failed, calm and siege", calm.failed + siege.failed, "", "0");
    report("siege beside calm", ratio, "x", "near 1");
    report("longest gap in calm", calmGap, "ms", "-");
    report("longest gap under siege", meter.longestMs(), "ms", "< 50");
    report("gaps over 30 ms", meter.gapsOver(30), "", "-");
    report("memory, most over the start", grown, "MB", "< 60");
    report("data folder, logs included", logs, "MB", "< 50");
    report("open files, most", mostFiles, "", "< 300");
    return meter.longestMs() < 50 && grown < 60 && logs < 50 && siege.failed == 0 ? 0 : 1;
}
