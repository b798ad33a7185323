// SPDX-License-Identifier: MIT
#include "tour/stops.h"
#include "tour/recording_stops.h"
#include "tour/upgrade_stops.h"

#include "device/item.h"
#include "device/row_zones.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "widgets/input_ui.h"

#include <QMenu>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTableWidget>
#include <QTest>
#include <QToolTip>

namespace
{

constexpr int koraBoxes = 12;
const QStringList webModels{"ORBIT·2", "RIVER·2", "LANTERN"};
const QString unsteadyBox = "127.77.0.14";
const QString webBox = "127.77.0.23";

int countIn(const Tour& tour, const QString& group)
{
    const Item* found = tour.devices()->treeModel()->findGroup(group);
    return found ? found->childCount() : 0;
}

bool boxesFound(Tour& tour)
{
    return tour.waitFor(
        "12 KORA boxes and one of each web-managed model, all online",
        [&] {
            const auto items = tour.devices()->treeModel()->items();
            const auto ready = [](const Item* item) {
                return item->isGroup() || item->property("online").toBool();
            };
            return countIn(tour, "KORA") == koraBoxes &&
                   std::all_of(webModels.begin(), webModels.end(),
                               [&](const QString& model) { return countIn(tour, model) == 1; }) &&
                   std::all_of(items.begin(), items.end(), ready);
        },
        60);
}

bool boxSelected(Tour& tour)
{
    tour.clickBox(selectedBox);
    // Off the list, where the mouse would bring up tooltips.
    tour.moveMouse(tour.child<QWidget>("page_video"), {20, 20});
    const auto* rows = tour.child<TreeView>("infoView")->treeModel();
    return tour.waitFor("six rows of information", [&] {
        const auto items = rows->items();
        return items.size() == 6 && std::none_of(items.begin(), items.end(), [](const Item* row) {
                   return row->content().isEmpty();
               });
    }) && tour.waitFor("the panels, filled in by the box", [&] {
        return tour.isShown("right_widget") &&
               tour.child<Inputui>("eParam_NDIName")->text().startsWith("KORA 0011");
    });
}

bool iconExplained(Tour& tour)
{
    TreeView* view = tour.devices();
    const Item* item = tour.box(selectedBox);
    const QRect row = view->visualRect(view->treeModel()->indexOf(item));
    const RowZones::Zone icon = RowZones(row, *item, false).rightIcons().first();
    tour.moveMouse(view->viewport(), icon.rect.center());
    return tour.waitFor("a tooltip about the icon under the mouse", [&] {
        return QToolTip::isVisible() &&
               QToolTip::text().contains(TreeModel::zoneTip(*item, icon.action));
    });
}

bool restartAsked(Tour& tour)
{
    TreeView* view = tour.devices();
    const Item* item = tour.box(selectedBox);
    const QRect row = view->visualRect(view->treeModel()->indexOf(item));
    const QPoint icon = RowZones(row, *item, false).rightIcons().first().rect.center();
    return tour.answerDialog(
        [&] {
            tour.moveMouse(view->viewport(), icon);
            QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, icon);
        },
        selectedBox, Qt::Key_Escape);
}

bool configurationSaved(Tour& tour)
{
    auto* rate = tour.child<QSpinBox>("eParam_NDIHXBitRate");
    const int wanted = rate->value() == 33 ? 34 : 33;
    tour.click(rate);
    QTest::keyClick(rate, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(rate, QString::number(wanted));
    if (!tour.answerDialog([&] { tour.click(tour.child<QWidget>("save")); }, "设置参数成功",
                           Qt::Key_Return))
        return false;
    // Another box and back: what shows then has been read from the box.
    tour.clickBox(unsteadyBox);
    if (!tour.waitFor("the other box's own bit rate", [&] { return rate->value() != wanted; }))
        return false;
    tour.clickBox(selectedBox);
    return tour.waitFor("the saved bit rate", [&] { return rate->value() == wanted; });
}

bool sourcesListed(Tour& tour)
{
    return tour.inPopup([&] { tour.click(tour.child<QWidget>("pushButton_hxdec_on")); },
                        "three sources to decode",
                        [&](QWidget& dialog) {
                            const auto* list = dialog.findChild<QTableWidget*>("Media_tableWidget");
                            return list && list->rowCount() == 3;
                        },
                        [&](QWidget&) { tour.takePicture(); });
}

bool streamingAsked(Tour& tour)
{
    return tour.inPopup([&] { tour.click(tour.child<QWidget>("pushButton_live_on")); },
                        "a field for the address to stream to",
                        [&](QWidget& dialog) {
                            const auto* address = dialog.findChild<QWidget*>("stream_url");
                            return address && address->isVisible();
                        },
                        [&](QWidget&) { tour.takePicture(); });
}

bool boxGoesOffline(Tour& tour)
{
    return tour.tellLan("unplug " + unsteadyBox) && tour.waitFor("the unplugged box offline", [&] {
        return !tour.box(unsteadyBox)->property("online").toBool();
    });
}

bool boxComesBack(Tour& tour)
{
    return tour.tellLan("plug " + unsteadyBox) && tour.waitFor("the box online again", [&] {
        return tour.box(unsteadyBox)->property("online").toBool();
    });
}

bool chooseLanguage(Tour& tour, int entry)
{
    return tour.inPopup([&] { tour.click(tour.child<QWidget>("language")); },
                        "the menu of languages",
                        [](QWidget& popup) { return qobject_cast<QMenu*>(&popup) != nullptr; },
                        [&](QWidget& popup) {
                            auto& menu = static_cast<QMenu&>(popup);
                            const QRect row = menu.actionGeometry(menu.actions().at(entry));
                            QTest::mouseClick(&menu, Qt::LeftButton, {}, row.center());
                        });
}

bool inEnglish(Tour& tour)
{
    static const QRegularExpression chinese("\\p{Han}");
    return chooseLanguage(tour, 1) && (tour.waitFor("no Chinese on the screen", [&] {
               return tour.shownTexts().filter(chinese).isEmpty();
           }) || tour.fail("left in Chinese: " + tour.shownTexts().filter(chinese).join(", ")));
}

bool inChinese(Tour& tour)
{
    return chooseLanguage(tour, 0) &&
           tour.waitFor("Chinese", [&] { return tour.shownTexts().contains("配置区域:"); });
}

bool webBoxSelected(Tour& tour)
{
    tour.clickBox(webBox);
    const bool isChosen = tour.waitFor("room for the page instead of the panels", [&] {
        return tour.isShown("web_widget") && !tour.isShown("right_widget");
    });
    // The first page waits for the browser engine, which may have to come from a slow disk.
    return isChosen && tour.waitFor(
                           "the page of the web-managed box",
                           [&] { return !tour.shownTexts().contains("正在打开设备的网页…"); }, 30);
}

bool windowCloses(Tour& tour)
{
    tour.takePicture();
    return tour.window().close() || tour.fail("the window refused to close");
}

} // namespace

const std::vector<Stop>& allStops()
{
    static const std::vector<Stop> stops = [] {
        std::vector<Stop> all{
            {"boxes", boxesFound},          {"selected", boxSelected},
            {"tooltip", iconExplained},     {"restart-question", restartAsked},
            {"saved", configurationSaved},  {"decode-sources", sourcesListed},
            {"streaming", streamingAsked},  {"offline", boxGoesOffline},
            {"online-again", boxComesBack},
        };
        const std::vector<Stop> last{
            {"english", inEnglish},
            {"chinese", inChinese},
            {"web-managed", webBoxSelected},
            {"closing", windowCloses},
        };
        for (const std::vector<Stop>& more : {recordingStops(), upgradeStops(), last})
            all.insert(all.end(), more.begin(), more.end());
        return all;
    }();
    return stops;
}
