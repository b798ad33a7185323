// SPDX-License-Identifier: MIT
#include "tour/upgrade_stops.h"

#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "tour/upgrade_order.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QScreen>
#include <QTableWidget>
#include <QTest>

namespace
{

const QStringList upgraded{"127.77.0.20", "127.77.0.21", "127.77.0.22"};
const QString otherBox = "127.77.0.11";

QWidget* openDialog()
{
    return QApplication::activeModalWidget();
}

bool newerFirmwareMarked(Tour& tour)
{
    return tour.waitFor("the mark of newer firmware on every KORA box", [&] {
        const auto boxes = tour.devices()->treeModel()->items("KORA");
        return !boxes.isEmpty() && std::all_of(boxes.begin(), boxes.end(), [](const Item* box) {
            return box->hasNewerFirmware();
        });
    });
}

bool upgradeAsked(Tour& tour)
{
    const QString package = tour.window().property("otaFilepath").toString();
    // Slow enough to be watched.
    for (const QString& ip : upgraded) {
        if (!tour.tellLan("fault " + ip + " throttle 400000 on upload times 1"))
            return false;
    }
    return orderUpgrade(tour, upgraded, package);
}

bool upgradeRuns(Tour& tour)
{
    return tour.waitFor("what happens to the selected box", [&] {
        return tour.isShown("page_wait") &&
               tour.child<QLabel>("tip")->text().contains("开始上传固件");
    });
}

bool upgradeEnds(Tour& tour)
{
    return tour.answerDialog(
        [&] {
            (void)tour.waitFor(
                "the end", [] { return openDialog() != nullptr; }, 60);
        },
        "全部升级完成,KORA即将重启完成固件升级.成功[3]个", Qt::Key_Return);
}

bool upgradeProved(Tour& tour)
{
    if (!tour.waitFor("the button of the report", [&] { return tour.isShown("upgradeReport"); }))
        return false;
    tour.click(tour.child<QWidget>("upgradeReport"));
    const auto proved = [&] {
        const auto* summary = tour.window().findChild<QLabel*>("upgradeReportSummary");
        const auto* table = tour.window().findChild<QTableWidget*>("upgradeReportTable");
        return summary && summary->text().contains("已证实[3]个") &&
               summary->text().contains("进行中[0]个") && table &&
               table->findItems("已恢复", Qt::MatchExactly).size() == 3;
    };
    if (!tour.waitFor("three boxes with the new version and their settings back", proved, 150))
        return false;
    tour.takePicture();
    const auto* report = tour.window().findChild<QDialog*>("upgradeReportDialog");
    if (!report->screen()->availableGeometry().contains(report->frameGeometry()))
        return tour.fail("the report does not fit on the screen");
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        // The report, and the notices about restored settings.
        if (window != &tour.window() && window->isVisible() && qobject_cast<QDialog*>(window))
            window->close();
    }
    if (!tour.waitFor(
            "every box online again",
            [&] {
                return tour.box(otherBox) &&
                       std::all_of(upgraded.begin(), upgraded.end(), [&](const QString& ip) {
                           return tour.box(ip) && tour.box(ip)->property("online").toBool();
                       });
            },
            60))
        return false;
    // The next stops look at the panels.
    tour.clickBox(otherBox);
    return tour.waitFor("the panels", [&] { return tour.isShown("right_widget"); });
}

} // namespace

const std::vector<Stop>& upgradeStops()
{
    static const std::vector<Stop> stops{
        {"newer-firmware", newerFirmwareMarked},
        {"upgrade-question", upgradeAsked},
        {"upgrading", upgradeRuns},
        {"upgraded", upgradeEnds},
        {"upgrade-report", upgradeProved},
    };
    return stops;
}
