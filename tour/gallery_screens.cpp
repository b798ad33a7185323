// SPDX-License-Identifier: MIT
#include "tour/gallery_screens.h"

#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "media/ffmpeg_widget.h"
#include "tour/gallery_upgrades.h"
#include "ui/recordings/list_widget.h"

#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QRadioButton>
#include <QTest>
#include <QToolButton>

namespace
{

const QString ordinaryBox = "127.77.0.11";
const QString wordyBox = "127.77.0.12";
const QString goneBox = "127.77.0.13";
const QString fullBox = "127.77.0.14";
const QString newBox = "127.77.0.15";
const QString webBox = "127.77.0.23";
constexpr int boxCount = 12;
constexpr int moreRecordings = 500;
constexpr int longName = 200;
/// In which a box on this computer has told everything.
constexpr int readMs = 1500;

bool isAnyPopup(const QWidget&)
{
    return true;
}

/// Off everything that would say something about itself.
void restMouse(Tour& tour)
{
    tour.moveMouse(&tour.window(), {2, tour.window().height() - 2});
}

bool select(Tour& tour, const QString& ip)
{
    tour.clickBox(ip);
    restMouse(tour);
    QTest::qWait(readMs);
    const auto* state = tour.child<QLabel>("config_state");
    return tour.waitFor("the panels of " + ip, [&] {
        return tour.isShown("right_widget") && state->text().isEmpty() &&
               tour.window().property("deviceip") == ip;
    });
}

bool popup(Tour& tour, const std::function<void()>& open)
{
    return tour.inPopup(open, "a menu or a dialog", isAnyPopup, [&](QWidget& shown) {
        if (auto* menu = qobject_cast<QMenu*>(&shown))
            menu->setActiveAction(menu->actions().first());
        tour.takePicture();
    });
}

bool popupOf(Tour& tour, const char* button)
{
    return popup(tour, [&] { tour.click(tour.child<QWidget>(button)); });
}

void fill(sim::VirtualLan& lan)
{
    sim::LanPlan plan;
    plan.boxes = boxCount;
    if (!lan.populate(plan) || !lan.plugInAll())
        qFatal("no boxes: %s", qPrintable(lan.errorString()));
    lan.find(wordyBox)->setParameter("eParam_NDIName", QString(longName, 'W'));
    lan.find(wordyBox)->setParameter("eParam_DeviceName", "Main stage " + QString(longName, 'W'));
    for (int n = 0; n < moreRecordings; ++n)
        lan.find(fullBox)->addRecording(QString("show %1 of the long season.mp4").arg(n), "x");
    const QStringList names = lan.find(newBox)->recordings();
    for (const QString& name : names)
        lan.find(newBox)->removeRecording(name);
}

std::vector<Stop> listScreens(sim::VirtualLan& lan)
{
    const auto filtered = [](const QString& text) {
        return [text](Tour& tour) {
            QTest::keyClick(&tour.window(), Qt::Key_F, Qt::ControlModifier);
            auto* field = tour.child<QLineEdit>("deviceFilter");
            field->setText(text);
            const bool ok = tour.waitFor("the search", [field] { return field->isVisible(); });
            QTest::qWait(300);
            return ok;
        };
    };
    return {
        {"searching",
         [](Tour& tour) {
             restMouse(tour);
             return tour.waitFor(
                        "a sweep", [] { return false; }, 4) ||
                    true;
         }},
        {"boxes",
         [&lan](Tour& tour) {
             fill(lan);
             return tour.waitFor(
                 "the boxes",
                 [&] {
                     const auto boxes = tour.devices()->treeModel()->items("KORA");
                     return boxes.size() == boxCount &&
                            std::none_of(boxes.begin(), boxes.end(),
                                         [](const Item* box) { return box->name().isEmpty(); });
                 },
                 60);
         }},
        {"search", filtered("0.12")},
        {"search-in-vain", filtered("zzz")},
        {"row-menu",
         [](Tour& tour) {
             tour.child<QLineEdit>("deviceFilter")->clear();
             QTest::keyClick(tour.child<QLineEdit>("deviceFilter"), Qt::Key_Escape);
             tour.clickBox(ordinaryBox);
             return popup(tour, [&] {
                 const QPoint spot(60, 60);
                 emit tour.devices()->customContextMenuRequested(spot);
             });
         }},
        {"language", [](Tour& tour) { return popupOf(tour, "language"); }},
    };
}

std::vector<Stop> panelScreens(sim::VirtualLan& lan)
{
    return {
        {"selected", [](Tour& tour) { return select(tour, ordinaryBox); }},
        {"long-names", [](Tour& tour) { return select(tour, wordyBox); }},
        {"folded",
         [](Tour& tour) {
             tour.click(tour.child<QWidget>("fold_panels"));
             restMouse(tour);
             tour.takePicture();
             tour.click(tour.child<QWidget>("fold_panels"));
             return true;
         }},
        {"many-recordings",
         [](Tour& tour) {
             return select(tour, fullBox) && tour.waitFor("the recordings", [&] {
                 return tour.child<ListWidget>("storageWidget")->count() > moreRecordings;
             });
         }},
        {"downloading",
         [&lan](Tour& tour) {
             (void)lan.find(ordinaryBox)->addFault("throttle 60000 on media");
             auto* list = tour.child<ListWidget>("storageWidget");
             if (!select(tour, ordinaryBox))
                 return false;
             list->selectAll();
             const QString folder = QDir::tempPath();
             const bool chosen = tour.inPopup(
                 [&] { emit list->S_download(list->selectedRows()); }, "a folder to choose",
                 [](QWidget& dialog) { return qobject_cast<QFileDialog*>(&dialog) != nullptr; },
                 [&](QWidget& dialog) {
                     auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
                     edit->setText(folder);
                     QTest::keyClick(edit, Qt::Key_Return);
                 });
             restMouse(tour);
             QTest::qWait(3000);
             tour.takePicture();
             const auto rows =
                 tour.child<QWidget>("downloads")->findChildren<QToolButton*>("cancelDownload");
             for (QToolButton* cancel : rows)
                 cancel->click();
             lan.find(ordinaryBox)->clearFaults();
             return chosen;
         }},
        {"no-recordings", [](Tour& tour) { return select(tour, newBox); }},
        {"offline",
         [&lan](Tour& tour) {
             const bool ok = select(tour, goneBox);
             lan.find(goneBox)->unplug();
             return ok &&
                    tour.waitFor(
                        "the box offline", [&] { return !tour.box(goneBox)->isOnline(); }, 20) &&
                    (QTest::qWait(2500), true);
         }},
        {"restart-question",
         [](Tour& tour) {
             return select(tour, ordinaryBox) && popup(tour, [&] {
                        emit tour.devices()->S_ActionClicked(Action::RestartDevice,
                                                             tour.box(ordinaryBox));
                    });
         }},
        {"offline-read",
         [](Tour& tour) {
             tour.clickBox(ordinaryBox);
             tour.clickBox(goneBox);
             restMouse(tour);
             QTest::qWait(6000); // until the reads have failed
             return true;
         }},
        {"decode",
         [](Tour& tour) {
             return select(tour, ordinaryBox) &&
                    popup(tour, [&] { tour.click(tour.child<QWidget>("pushButton_hxdec_on")); });
         }},
        {"live", [](Tour& tour) { return popupOf(tour, "pushButton_live_on"); }},
        {"live-srt-listener",
         [](Tour& tour) {
             return tour.inPopup(
                 [&] { tour.click(tour.child<QWidget>("pushButton_live_on")); }, "the live dialog",
                 isAnyPopup,
                 [&](QWidget& dialog) {
                     dialog.findChild<QRadioButton*>("radioButton_Listener")->click();
                     tour.takePicture();
                 });
         }},
    };
}

std::vector<Stop> pictureScreens()
{
    const auto playing = [](Tour& tour) {
        const auto* video = tour.child<FFmpegWidget>("video_widget");
        return video->state() == PictureState::State::Playing && !video->picture().isNull();
    };
    return {
        {"playing",
         [playing](Tour& tour) {
             auto* list = tour.child<ListWidget>("storageWidget");
             if (!select(tour, ordinaryBox) ||
                 !tour.waitFor("recordings", [&] { return list->count() > 0; }))
                 return false;
             list->setCurrentRow(0);
             tour.click(tour.child<QWidget>("video_play"));
             restMouse(tour);
             return tour.waitFor(
                 "a picture", [&] { return playing(tour); }, 30);
         }},
        {"figures",
         [](Tour& tour) {
             auto* video = tour.child<FFmpegWidget>("video_widget");
             video->showFigures(true);
             QTest::qWait(1200);
             tour.takePicture();
             video->showFigures(false);
             return true;
         }},
        {"full-screen",
         [](Tour& tour) {
             tour.click(tour.child<QWidget>("full"));
             const bool ok =
                 tour.waitFor("full screen", [&] { return !tour.isShown("deviceView"); });
             restMouse(tour);
             tour.takePicture();
             tour.click(tour.child<QWidget>("colsefull"));
             return ok;
         }},
        {"stream-information",
         [](Tour& tour) {
             tour.click(tour.child<QWidget>("switch_monitor"));
             restMouse(tour);
             const bool ok = tour.waitFor("events", [&] {
                 return !tour.child<QWidget>("plainTextEdit_Stream")
                             ->property("plainText")
                             .toString()
                             .isEmpty();
             });
             tour.takePicture();
             tour.click(tour.child<QWidget>("switch_monitor"));
             return ok;
         }},
        {"nothing-there",
         [](Tour& tour) {
             auto* video = tour.child<FFmpegWidget>("video_widget");
             video->close();
             return popup(tour, [&] { video->open("http://" + goneBox + ":8081/media/lost.mp4"); });
         }},
        {"web-managed",
         [](Tour& tour) {
             tour.clickBox(webBox);
             restMouse(tour);
             QTest::qWait(4000);
             return tour.isShown("web_widget");
         }},
    };
}

} // namespace

std::vector<Stop> galleryScreens(sim::VirtualLan& lan)
{
    std::vector<Stop> all = listScreens(lan);
    for (const auto& more : {panelScreens(lan), pictureScreens(), galleryUpgrades(lan)})
        all.insert(all.end(), more.begin(), more.end());
    return all;
}
