// SPDX-License-Identifier: MIT
#include "tour/gallery_upgrades.h"

#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "tour/upgrade_order.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTableWidget>
#include <QTest>

namespace
{

const QStringList upgraded{"127.77.0.16", "127.77.0.17", "127.77.0.18"};
constexpr int packageBytes = 4 * 1024 * 1024;
/// All addresses of the network, with the twelve boxes and three others that are there already.
constexpr int firstMore = 26;
constexpr int moreBoxes = 229;
constexpr int boxesBelow = 10;
constexpr int allBoxes = 12 + moreBoxes + boxesBelow;

QString writePackage()
{
    const QString path = QDir::tempPath() + "/KORA_V1.2.0.623.dat";
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(packageBytes, 'k')) < 0)
        qFatal("no package: %s", qPrintable(file.errorString()));
    return path;
}

bool askToUpgrade(Tour& tour, sim::VirtualLan& lan)
{
    (void)lan.find(upgraded.at(0))->addFault("throttle 400000 on upload times 1");
    (void)lan.find(upgraded.at(1))->addFault("throttle 600000 on upload times 1");
    (void)lan.find(upgraded.at(2))->addFault("wrong-md5 on upload times 3");
    return orderUpgrade(tour, upgraded, writePackage());
}

bool showUpgrading(Tour& tour)
{
    tour.moveMouse(&tour.window(), {2, tour.window().height() - 2});
    const bool ok = tour.waitFor("an upload that has come some way", [&] {
        return tour.isShown("page_wait") && !tour.box(upgraded.first())->activity().isEmpty();
    });
    QTest::qWait(3000);
    return ok;
}

bool showEnd(Tour& tour)
{
    const auto isOver = [] { return QApplication::activeModalWidget() != nullptr; };
    return tour.inPopup([&] { (void)tour.waitFor("the end of the upgrade", isOver, 90); },
                        "the message about the end", [](QWidget&) { return true; },
                        [&](QWidget& message) {
                            tour.takePicture();
                            QTest::keyClick(&message, Qt::Key_Return);
                        });
}

bool showReport(Tour& tour)
{
    if (!tour.waitFor("the button of the report", [&] { return tour.isShown("upgradeReport"); }))
        return false;
    tour.click(tour.child<QWidget>("upgradeReport"));
    const bool ok = tour.waitFor("the report", [&] {
        const auto* table = tour.window().findChild<QTableWidget*>("upgradeReportTable");
        return table && table->isVisible() && table->rowCount() == upgraded.size();
    });
    QTest::qWait(500);
    tour.takePicture();
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window != &tour.window() && window->isVisible() && qobject_cast<QDialog*>(window))
            window->close();
    }
    return ok;
}

bool showFullNetwork(Tour& tour, sim::VirtualLan& lan)
{
    sim::LanPlan above;
    above.first = firstMore;
    above.boxes = moreBoxes;
    above.web = false;
    sim::LanPlan below;
    below.first = 1;
    below.boxes = boxesBelow;
    below.web = false;
    if (!lan.populate(above) || !lan.populate(below) || !lan.plugInAll())
        qFatal("no boxes: %s", qPrintable(lan.errorString()));
    return tour.waitFor(
        "every box of the network",
        [&] { return tour.devices()->treeModel()->items("KORA").size() == allBoxes; }, 120);
}

} // namespace

std::vector<Stop> galleryUpgrades(sim::VirtualLan& lan)
{
    return {
        {"upgrade-question", [&lan](Tour& tour) { return askToUpgrade(tour, lan); }},
        {"upgrading", showUpgrading},
        {"upgrade-ended", showEnd},
        {"upgrade-report", showReport},
        {"full-network", [&lan](Tour& tour) { return showFullNetwork(tour, lan); }},
    };
}
