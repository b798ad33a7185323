// SPDX-License-Identifier: MIT
#include "tour/recording_stops.h"

#include "device/item.h"
#include "media/ffmpeg_widget.h"
#include "ui/recordings/list_widget.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>

namespace
{

ListWidget* list(const Tour& tour)
{
    return tour.child<ListWidget>("storageWidget");
}

bool isPlaying(const Tour& tour, int row)
{
    const auto& entries = list(tour)->entries();
    return row < int(entries.size()) && entries[size_t(row)]->property("ispaly").toBool() &&
           !tour.child<FFmpegWidget>("video_widget")->picture().isNull();
}

int rowOf(const Tour& tour, const QString& part)
{
    const auto& entries = list(tour)->entries();
    for (size_t row = 0; row < entries.size(); ++row) {
        if (entries[row]->title().contains(part))
            return int(row);
    }
    return -1;
}

void doubleClickRow(Tour& tour, int row)
{
    list(tour)->scrollToItem(list(tour)->item(row));
    const QPoint spot = list(tour)->visualItemRect(list(tour)->item(row)).center();
    tour.moveMouse(list(tour)->viewport(), spot);
    QTest::mouseClick(list(tour)->viewport(), Qt::LeftButton, {}, spot);
    QTest::mouseDClick(list(tour)->viewport(), Qt::LeftButton, {}, spot);
}

/// Chooses an entry of the picture's own menu.
bool chooseInPicture(Tour& tour, int entry)
{
    auto* video = tour.child<FFmpegWidget>("video_widget");
    return tour.inPopup(
        [&] {
            emit video->customContextMenuRequested({20, 20});
        },
        "the menu of the picture",
        [](QWidget& popup) { return qobject_cast<QMenu*>(&popup) != nullptr; },
        [&](QWidget& popup) {
            auto& menu = static_cast<QMenu&>(popup);
            const QRect row = menu.actionGeometry(menu.actions().at(entry));
            QTest::mouseClick(&menu, Qt::LeftButton, {}, row.center());
        });
}

bool recordingPlayed(Tour& tour)
{
    tour.clickBox(selectedBox);
    if (!tour.waitFor("recordings, one with a blank in its name",
                      [&] { return rowOf(tour, " ") >= 0; }))
        return false;
    const int row = rowOf(tour, " ");
    doubleClickRow(tour, row);
    return tour.waitFor(
        "the recording in the monitor", [&] { return isPlaying(tour, row); }, 30);
}

bool neighboursPlayed(Tour& tour)
{
    const int last = list(tour)->count() - 1;
    for (int row = rowOf(tour, " ") + 1; row <= last; ++row) {
        tour.click(tour.child<QWidget>("video_front"));
        if (!tour.waitFor(
                "the next recording", [&] { return isPlaying(tour, row); }, 30))
            return false;
    }
    return tour.answerDialog([&] { tour.click(tour.child<QWidget>("video_front")); },
                             "已经第一个了", Qt::Key_Return);
}

bool fullScreen(Tour& tour)
{
    auto* video = tour.child<QWidget>("video_widget");
    const auto full = [&] { return tour.window().isFullScreen() && !tour.isShown("deviceView"); };
    const auto windowed = [&] {
        return !tour.window().isFullScreen() && tour.isShown("deviceView");
    };
    tour.click(tour.child<QWidget>("full"));
    if (!tour.waitFor("the picture on the whole screen by the button", full))
        return false;
    tour.click(tour.child<QWidget>("colsefull"));
    if (!tour.waitFor("the window again by the button", windowed))
        return false;
    QTest::mouseDClick(video, Qt::LeftButton);
    if (!tour.waitFor("the picture on the whole screen by double click", full))
        return false;
    tour.takePicture();
    QTest::mouseDClick(video, Qt::LeftButton);
    if (!tour.waitFor("the window again by double click", windowed))
        return false;
    QTest::mouseDClick(video, Qt::LeftButton);
    if (!tour.waitFor("the whole screen once more", full))
        return false;
    video->setFocus();
    QTest::keyClick(video, Qt::Key_Escape);
    return tour.waitFor("the window again by Escape", windowed);
}

bool recorded(Tour& tour)
{
    auto* recode = tour.child<QCheckBox>("recode");
    QTest::mouseClick(recode, Qt::LeftButton, {}, {8, recode->height() / 2});
    if (!tour.waitFor(
            "that the box records, ten seconds long",
            [&] {
                return recode->isChecked() && tour.child<QLabel>("recodeTime")->text() > "00:00:10";
            },
            30))
        return false;
    const QString name = tour.box(selectedBox)->property("recodefilename").toString();
    if (!tour.answerDialog(
            [&] {
                QTest::mouseClick(recode, Qt::LeftButton, {}, {8, recode->height() / 2});
                QTest::qWait(3000);
            },
            "录制完成,是否现在查看 [" + name + "]", Qt::Key_Return))
        return false;
    return tour.waitFor(
        "the new recording in the monitor", [&] { return isPlaying(tour, rowOf(tour, name)); }, 30);
}

bool downloaded(Tour& tour)
{
    const QTemporaryDir folder;
    const QString name = list(tour)->entries().front()->title();
    list(tour)->setCurrentRow(0);
    const bool chosen = tour.inPopup(
        [&] { emit list(tour)->S_download(list(tour)->selectedRows()); }, "a folder to choose",
        [](QWidget& dialog) { return qobject_cast<QFileDialog*>(&dialog) != nullptr; },
        [&](QWidget& dialog) {
            tour.takePicture();
            auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
            edit->setText(folder.path());
            QTest::keyClick(edit, Qt::Key_Return);
        });
    return chosen && tour.answerDialog([] { QTest::qWait(3000); }, "下载完成", Qt::Key_Escape) &&
           (QFileInfo(folder.path() + "/" + name).size() > 100000 ||
            tour.fail("there is no whole file of " + name));
}

bool playingSpared(Tour& tour)
{
    const int before = list(tour)->count();
    list(tour)->setCurrentRow(0);
    list(tour)->item(1)->setSelected(true);
    if (!tour.answerDialog([&] { QTest::keyClick(list(tour), Qt::Key_Delete); },
                           "确认要删除这些录制文件吗?", Qt::Key_Return))
        return false;
    return tour.waitFor("the playing recording spared, the other one gone",
                        [&] { return list(tour)->count() == before - 1 && isPlaying(tour, 0); });
}

/// Starts the box's live service; it tells where its stream can be pulled.
bool liveStarted(Tour& tour)
{
    return tour.inPopup(
               [&] { tour.click(tour.child<QWidget>("pushButton_live_on")); }, "the live dialog",
               [](QWidget& dialog) {
                   return dialog.findChild<QLineEdit*>("stream_url") != nullptr;
               },
               [&](QWidget& dialog) {
                   dialog.findChild<QLineEdit*>("stream_url")->setText("rtmp://127.77.0.200/live");
                   QTest::mouseClick(dialog.findChild<QWidget*>("oklive"), Qt::LeftButton);
               }) &&
           tour.answerDialog([] { QTest::qWait(3000); }, "开启直播服务成功http://", Qt::Key_Return);
}

bool livePlayed(Tour& tour)
{
    auto* video = tour.child<FFmpegWidget>("video_widget");
    const QString address = "http://" + selectedBox + ":8090/live.ts";
    const auto typed = [&](QWidget& dialog) {
        tour.takePicture();
        auto* edit = dialog.findChild<QTextEdit*>("contentEdit");
        QTest::keyClicks(edit, address);
        QTest::keyClick(edit, Qt::Key_Return);
    };
    const bool asked = tour.inPopup(
        [&] { chooseInPicture(tour, 1); }, "a field for the address",
        [](QWidget& dialog) { return dialog.findChild<QTextEdit*>("contentEdit") != nullptr; },
        typed);
    return asked && tour.waitFor(
                        "the live stream",
                        [&] {
                            return tour.child<QLabel>("decodeaddress")->text() == address &&
                                   video->state() == PictureState::State::Playing &&
                                   !video->picture().isNull();
                        },
                        20);
}

bool livePulled(Tour& tour)
{
    auto* video = tour.child<FFmpegWidget>("video_widget");
    if (!tour.tellLan("unplug " + selectedBox) ||
        !tour.waitFor("the monitor saying that nothing comes",
                      [&] { return video->state() != PictureState::State::Playing; }))
        return false;
    tour.takePicture();
    tour.click(tour.child<QWidget>("video_play"));
    return tour.tellLan("plug " + selectedBox) &&
           tour.waitFor(
               "the box again",
               [&] {
                   return tour.box(selectedBox) &&
                          tour.box(selectedBox)->property("online").toBool();
               },
               30);
}

} // namespace

const std::vector<Stop>& recordingStops()
{
    static const std::vector<Stop> stops{
        {"recording", recordingPlayed}, {"neighbours", neighboursPlayed},
        {"full-screen", fullScreen},    {"recorded", recorded},
        {"downloaded", downloaded},     {"playing-spared", playingSpared},
        {"live-started", liveStarted},  {"live", livePlayed},
        {"live-unplugged", livePulled},
    };
    return stops;
}
