// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"

#include <QLabel>
#include <QSignalSpy>

/// Whatever the operator does in the list: the box that the panels show and write to is one of the
/// highlighted ones, and is told once.
class tst_Selection : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<Item*>("Item*");
        for (int host = 1; host <= 4; ++host)
            addBox(host);
        openKnowing({1, 2, 3, 4});
    }
    void cleanupTestCase() { close(); }

    void gestures_data()
    {
        columns<QString, QString, int>("gestures", "boxes", "told");
        row("click", "left 2", "2*", 1);
        row("second click on the same", "left 2, left 2", "2*", 2);
        row("right click", "left 1, right 3", "3*", 2);
        row("right click on one of two", "left 1, ctrl 2, right 1", "1* 2", 3);
        row("ctrl adds", "left 1, ctrl 3", "1 3*", 2);
        row("ctrl takes away", "left 1, ctrl 3, ctrl 3", "1*", 3);
        row("ctrl takes the other away", "left 1, ctrl 3, ctrl 1", "3*", 2);
        row("ctrl takes the last away", "left 1, ctrl 1", "", 2);
        row("shift", "left 1, shift 3", "1 2 3*", 2);
        row("drag", "left 4, drag 3", "1 2 3*", 2);
        row("group", "left 1, left 0", "1*", 2);
        row("right click on a group", "left 1, right 0", "1*", 1);
        row("keys", "left 1, key 4, key 4", "3*", 3);
        row("keys over the group", "left 1, key 1, key 4", "1*", 1);
        row("all", "left 2, all 0", "1 2* 3 4", 1);
        row("below the rows", "left 2, left 9", "", 2);
    }
    void gestures()
    {
        QFETCH(QString, gestures);
        deviceView()->clearSelection();
        QCOMPARE(highlighted(), QString());
        QSignalSpy clicks(deviceView(), &TreeView::S_ActionClicked);
        const QStringList words = gestures.split(", ");
        for (const QString& word : words)
            gesture(word);
        QTEST(highlighted(), "boxes");
        QCoreApplication::processEvents();
        QTEST(highlighted(), "boxes");
        QTEST(clicks.size(), "told");
    }

    void addressedRowIsMarkedAndSaved()
    {
        gesture("left 1");
        gesture("right 3");
        gesture("shift 4");
        gesture("right 3");
        const QImage look = deviceView()->viewport()->grab().toImage();
        const auto edge = [&](int host) { return look.pixel(1, rowOf(host).center().y()); };
        QVERIFY(edge(3) != edge(4));
        // The two panels are read as one.
        const auto begin = [this](const char* slider) {
            return child<QWidget>(slider)->mapTo(&window(), {}).x();
        };
        QTRY_COMPARE(begin("eParam_SDIVolumeSlider"), begin("eParam_NDIHXGopLengthSlider"));
        sim::VirtualBox* box = lan().find(ip(3));
        QTRY_COMPARE(shown("eParam_NDIName"), box->parameter("eParam_NDIName"));
        child<Inputui>("eParam_NDIName")->setText("Stage");
        const DialogAnswerer anything;
        click("save");
        QTRY_VERIFY_WITH_TIMEOUT(told(*box).contains("NDIName=Stage"), 10000);
        for (const int other : {1, 4})
            QCOMPARE(told(*lan().find(ip(other))), QStringList());
    }

    /// For a larger picture, until the operator wants them back; full screen changes nothing of it.
    void panelsFoldAway()
    {
        gesture("left 1");
        auto* panels = child<QWidget>("right_widget");
        auto* picture = child<QWidget>("video_widget");
        const int width = panels->width();
        const int narrow = picture->width();
        window().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window()));
        QTest::keyClick(&window(), Qt::Key_F12);
        QTRY_VERIFY(!panels->isVisible() && picture->width() >= narrow + width);
        gesture("left 2");
        QTest::keyClick(&window(), Qt::Key_F11);
        QTRY_VERIFY(window().isFullScreen());
        QTest::keyClick(&window(), Qt::Key_F12);
        QTest::keyClick(&window(), Qt::Key_F11);
        QTRY_VERIFY(!window().isFullScreen() && !panels->isVisible());
        QTest::keyClick(&window(), Qt::Key_F12);
        QTRY_VERIFY(panels->isVisible() && panels->width() == width && picture->width() == narrow);
    }

    void goneRowsAddressNothing()
    {
        gesture("left 1");
        gesture("shift 4");
        item(2)->setProperty("upgrading", true);
        QSignalSpy clicks(deviceView(), &TreeView::S_ActionClicked);
        click("refreshDevice");
        QTRY_COMPARE(highlighted(), QString("2*"));
        QCOMPARE(clicks.size(), 1); // not each of those that went first
        item(2)->setProperty("upgrading", false);
        click("refreshDevice");
        QCOMPARE(highlighted(), QString());
    }

private:
    /// "left 2": what is done on which box; box 0 is the group's row, 9 the room below the rows.
    void gesture(const QString& word)
    {
        TreeView* view = deviceView();
        const QString how = word.section(' ', 0, 0);
        const int host = word.section(' ', 1).toInt();
        const QPoint spot = host == 9 ? QPoint(90, rowOf(4).bottom() + 40)
                                      : QPoint(rowOf(host).left() + 90, rowOf(host).center().y());
        if (how == "drag") {
            QMouseEvent move(QEvent::MouseMove, spot, Qt::NoButton, Qt::LeftButton, {});
            QTest::mousePress(view->viewport(), Qt::LeftButton, {}, {90, rowOf(1).center().y()});
            QApplication::sendEvent(view->viewport(), &move);
            QApplication::sendEvent(view->viewport(), &move);
            QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, spot);
        } else if (how == "key") {
            QTest::keyClick(view, Qt::Key(host == 1 ? Qt::Key_Up : Qt::Key_Down));
        } else if (how == "all") {
            QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
        } else {
            QTest::mouseClick(view->viewport(), how == "right" ? Qt::RightButton : Qt::LeftButton,
                              how == "ctrl"    ? Qt::ControlModifier
                              : how == "shift" ? Qt::ShiftModifier
                                               : Qt::NoModifier,
                              spot);
        }
    }

    QRect rowOf(int host) const
    {
        TreeView* view = deviceView();
        TreeModel* model = view->treeModel();
        return view->visualRect(model->indexOf(host ? item(host) : model->root()->child(0)));
    }

    /// The highlighted boxes; the one that is addressed, by the window's property and by the
    /// caption of the panels, has a star.
    QString highlighted()
    {
        const QString addressed = window().property("deviceip").toString();
        const QString caption = child<QLabel>("device_config_title_value")->text();
        const bool shown = !child<QWidget>("right_widget")->isHidden();
        QStringList hosts;
        const auto boxes = deviceView()->selectedBoxes();
        for (const Item* box : boxes) {
            const bool here =
                box->address() == addressed && caption == box->combinedLabel() && shown;
            hosts << box->address().section('.', 3) + (here ? "*" : "");
        }
        if (boxes.isEmpty() && (shown || !addressed.isEmpty()))
            hosts << "unlit " + addressed;
        return hosts.join(' ');
    }
};

QTEST_MAIN(tst_Selection)
#include "tst_selection.moc"
