// SPDX-License-Identifier: MIT
// tarn-hub-gallery: the program's screens, one picture of each, for scripts/gallery.
#include "simulator/sample_clip.h"
#include "tour/gallery_screens.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"

#include <QApplication>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstdio>

int main(int argc, char* argv[])
{
    StartUp::setAttributes();
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: tarn-hub-gallery FPING FOLDER\n", stderr);
        return 2;
    }
    const QTemporaryDir run;
    sim::makeSampleClips();
    sim::VirtualLan lan(run.path());
    qputenv(sim::VirtualLan::runVariable().toLatin1(), run.path().toUtf8());
    StartUp::dress(application);
    Options options;
    options.sweep.fping = arguments.at(1);
    options.sweep.subnets = QStringList{sim::LanPlan().subnet};
    options.updateServer = QStringLiteral("http://127.77.0.2:9");
    Tarn_Hub window(options);
    window.setGeometry(window.screen()->availableGeometry());
    window.show();
    bool reached = false;
    QTimer::singleShot(0, &window, [&] {
        Tour tour(window, QString(), arguments.at(2));
        window.activateWindow();
        reached = QTest::qWaitForWindowActive(&window, 10000) && tour.visitAll(galleryScreens(lan));
        QCoreApplication::exit();
    });
    QApplication::exec();
    return reached ? 0 : 1;
}
