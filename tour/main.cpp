// SPDX-License-Identifier: MIT
// tarn-hub-tour: the program itself, driven through a tour for scripts/demo.
#include "tour/stops.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"

#include <QApplication>
#include <QDir>
#include <QScreen>
#include <QTest>
#include <QTimer>

#include <cstdio>

namespace
{

constexpr int wrongUsage = 2;

/// Takes "name value" out of the arguments.
QString takeOption(QStringList& arguments, const QString& name)
{
    const int at = arguments.indexOf(name);
    if (at < 0 || at + 1 >= arguments.size())
        return {};
    const QString value = arguments.at(at + 1);
    arguments.erase(arguments.begin() + at, arguments.begin() + at + 2);
    return value;
}

/// The browser engine keeps processes of its own until the very end; they go with this one.
bool isBrowserEngine(const QByteArray& pid)
{
    QFile name("/proc/" + pid + "/comm");
    return name.open(QIODevice::ReadOnly) && name.readAll().startsWith("QtWebEngine");
}

/// Processes that this one has started and that still run.
QByteArray children()
{
    QByteArray found;
    const auto threads = QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& thread : threads) {
        QFile list("/proc/self/task/" + thread + "/children");
        if (!list.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray& pid : list.readAll().simplified().split(' '))
            found += pid.isEmpty() || isBrowserEngine(pid) ? QByteArray() : pid + ' ';
    }
    return found.trimmed();
}

bool tour(Tarn_Hub& window, const QString& lan, const QString& pictures)
{
    bool reached = false;
    QTimer::singleShot(0, &window, [&] {
        Tour tour(window, lan, pictures);
        window.activateWindow();
        reached = QTest::qWaitForWindowActive(&window, 10000) && tour.visitAll(allStops());
        // Left to itself the program ends with its window.
        if (window.isVisible())
            QCoreApplication::exit(1);
    });
    return QApplication::exec() == 0 && reached;
}

} // namespace

int main(int argc, char* argv[])
{
    StartUp::setAttributes();
    QApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    const QString lan = takeOption(arguments, "--lan");
    const QString pictures = takeOption(arguments, "--pictures");
    const OptionsResult read = readOptions(arguments);
    if (lan.isEmpty() || pictures.isEmpty() || read.outcome != OptionsResult::Run) {
        std::fputs("usage: tarn-hub-tour --lan PIPE --pictures FOLDER [TARN_HUB_OPTION...]\n",
                   stderr);
        return wrongUsage;
    }
    StartUp::dress(application);
    Options options = read.options;
    bool reached = false;
    {
        Tarn_Hub window(options);
        StartUp::installCrashHandler();
        window.setGeometry(window.screen()->availableGeometry());
        window.show();
        reached = tour(window, lan, pictures);
    }
    const bool alone = children().isEmpty();
    std::printf("program ends: %s\n",
                alone ? "ok" : ("FAILED, left running: " + children()).constData());
    return reached && alone ? 0 : 1;
}
