// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "tests/ui/recordings/recordings_fixture.h"
#include "ui/control/setui.h"

#include <QAccessible>
#include <QMenu>
#include <QRegularExpression>
#include <QScrollArea>

/// Working without a mouse, and without seeing the window: keys, focus, and what a screen reader
/// is told.
class tst_Access : public QObject, RecordingsFixture
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        openBoxes();
        selectBox({"a.mp4", "b.mov"});
        select(7, settings());
    }
    void init() { activate(); }
    void cleanup() { speak(1); }

    void everythingHasAName_data() { languages(); }
    void everythingHasAName()
    {
        QFETCH(int, language);
        speak(language);
        checkNames(&window());
        checkDialog("pushButton_live_on");
        checkDialog("pushButton_hxdec_on");
        messageBox question("Go on?", &window());
        question.setRecoveryVisible(true);
        question.showInput();
        checkNames(&question);
        QCOMPARE(spoken(&question), QString("Go on?"));
        child<QAbstractButton>("upgradeReport")->click();
        auto* report = child<QDialog>("upgradeReportDialog");
        checkNames(report);
        delete report;
    }

    void namesAreThoseOfTheCaptions()
    {
        const auto name = [this](const char* widget) { return spoken(child<QWidget>(widget)); };
        QCOMPARE(name("eParam_SDIVolume"), QString("SDI音量 (0~32)"));
        QCOMPARE(name("eParam_SDIVolumeSlider"), QString("SDI音量 (0~32)"));
        QCOMPARE(name("DHCP"), QString("DHCP"));
        QCOMPARE(name("HX3"), QString("NDI | HX3"));
        QCOMPARE(name("quality_3"), QString("高, NDI HX编码质量"));
        QCOMPARE(name("recode"), QString("录制"));
        auto* mask = child<QWidget>("eParam_NetMask");
        QCOMPARE(spoken(mask->findChild<QWidget*>("txtIP4")),
                 QString("静态子网掩码，第4段，共4段"));
        // What is marked on an editor is said of the field that has the keys.
        auto* field = child<QWidget>("eParam_NDIName")->focusProxy();
        QTest::keyClicks(field, "x");
        QCOMPARE(spoken(field, QAccessible::Description), QString("已修改，尚未保存"));
        QTest::keyClick(field, Qt::Key_Backspace);
        speak(2);
        QCOMPARE(name("H265"), QString("H.265(HEVC), HX codec"));
    }

    void rowsSayWhatTheyShow()
    {
        Item& box = *item(7);
        const QString known = ip(7) + ", " + box.name();
        QVERIFY(!box.name().isEmpty());
        QVERIFY(rows(deviceView()).contains(known + ", 在线"));
        QVERIFY(rows(deviceView()).contains("KORA, 2"));
        box.setOnline(false);
        box.setPackageName("KORA_9.9.9.999");
        box.showUpgrade({true, false, false, false, 600});
        QVERIFY(rows(deviceView()).contains(known + ", 离线 (升级中, 发现新固件可升级)"));
        QVERIFY(rows(deviceView()).contains("KORA, 1/2 在线"));
        box.setPackageName("");
        box.showUpgrade({false, true, false, false, 0});
        QVERIFY(rows(deviceView()).contains(known + ", 离线 (升级未成功)"));
        box.showUpgrade({false, false, false, false, 600});
        box.setOnline(true);
        QVERIFY(rows(child<QWidget>("infoView")).contains("MAC地址: " + box.macAddress()));
        list()->entries().front()->setPlaying(true);
        QCOMPARE(rows(list()), (QStringList{"a.mp4，正在播放 (视频)", "b.mov (视频)"}));
        list()->entries().front()->setPlaying(false);
    }

    /// Area by area, in the order in which they stand, both ways, and every stop can be used.
    void tabWalksAreaByArea()
    {
        auto* first = child<QWidget>("firmwareUpdate");
        const QStringList there = walk(first, Qt::Key_Tab);
        QStringList areas;
        for (const QString& stop : there) {
            if (areas.isEmpty() || areas.last() != stop.section('/', 0, 0))
                areas << stop.section('/', 0, 0);
        }
        QCOMPARE(areas.join(' '),
                 QString("device_list_bar deviceView device_info monitor_top monitor_bottom "
                         "config_area control_area"));
        QStringList back = walk(first, Qt::Key_Backtab);
        std::reverse(back.begin() + 1, back.end());
        QCOMPARE(back, there);
    }

    void keysWorkInEveryLanguage_data() { languages(); }
    void keysWorkInEveryLanguage()
    {
        QFETCH(int, language);
        speak(language);
        for (const auto& [widget, key] : std::initializer_list<std::pair<const char*, const char*>>{
                 {"refreshDevice", "(F5)"},
                 {"full", "(F11)"},
                 {"colsefull", "(F11)"},
                 {"save", "(Ctrl+S)"},
                 {"filterDevices", "(Ctrl+F)"}}) {
            auto* button = child<QAbstractButton>(widget);
            QVERIFY2(button->toolTip().endsWith(key), qPrintable(button->toolTip()));
            QVERIFY(button->toolTip().startsWith(spoken(button)));
        }
        const QString picture = spoken(child<QWidget>("video_widget"), QAccessible::Description);
        QVERIFY2(picture.contains("(F8)") && picture.contains("(F9)"), qPrintable(picture));

        sim::VirtualBox* box = select(7);
        {
            const DialogAnswerer notices;
            QTest::keyClick(&window(), Qt::Key_S, Qt::ControlModifier);
            QTRY_COMPARE(notices.texts().size(), 1);
        }
        QVERIFY2(told(*box).contains("NDIName=Stage Left"), qPrintable(told(*box).join(' ')));

        activate();
        const QPointer<Item> before(item(7));
        QTest::keyClick(&window(), Qt::Key_F5);
        QTRY_VERIFY(!before);
        QTRY_VERIFY_WITH_TIMEOUT(item(7) && isKnown(*item(7)), 15000);
        select(7);
    }

    /// What icons of rows do for the mouse, the menu does for the keys.
    void menusOpenByKey()
    {
        item(7)->setPackageName("KORA_9.9.9.999");
        deviceView()->setCurrentIndex(deviceView()->treeModel()->indexOf(item(7)));
        QStringList offered;
        Action asked = Action::None;
        QObject context;
        connect(deviceView(), &TreeView::S_ActionClicked, &context,
                [&asked](Action type) { asked = type; });
        menuByKey(deviceView(), offered, "升级到新固件");
        QVERIFY(offered.contains("重启设备"));
        QCOMPARE(asked, Action::NewFirmware);
        item(7)->setPackageName("");

        list()->clearSelection();
        list()->setCurrentRow(0, QItemSelectionModel::NoUpdate);
        menuByKey(list(), offered, QString());
        QCOMPARE(offered, (QStringList{"下载", "删除"}));
        auto* picture = child<QWidget>("video_widget");
        menuByKey(picture, offered, QString());
        QVERIFY(child<QWidget>("page_video")->property("keyFocus").toBool());
        QVERIFY(offered.contains("播放本地文件"));
    }

private:
    /// Dialogs and menus have had the keys.
    void activate()
    {
        window().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window()));
    }

    static void languages()
    {
        columns<int>("language");
        row("Chinese", 1);
        row("English", 2);
        row("Korean", 3);
    }

    void speak(int language)
    {
        chooseLanguage(language);
        m_hasChinese = language == 1;
        QCoreApplication::processEvents();
    }

    static QString spoken(QWidget* widget, QAccessible::Text what = QAccessible::Name)
    {
        QAccessibleInterface* told = QAccessible::queryAccessibleInterface(widget);
        return told ? told->text(what) : QString();
    }

    /// Everything in `root` that takes the keys has a name in the language of now.
    void checkNames(QWidget* root) const
    {
        static const QRegularExpression chinese("\\p{Han}");
        int checked = 0;
        const auto widgets = root->findChildren<QWidget*>();
        for (QWidget* widget : widgets) {
            // Inside Qt's own inputs; and the page that a text panel does not show.
            const bool isInner = widget->objectName().startsWith("qt_") ||
                                 (widget->parentWidget()->objectName() == "titlePage" &&
                                  qobject_cast<messageBox*>(root)) ||
                                 (widget->parentWidget()->objectName() == "contentPage" &&
                                  !qobject_cast<messageBox*>(root));
            if (isInner || widget->focusProxy() || !(widget->focusPolicy() & Qt::TabFocus))
                continue;
            const QString name = spoken(widget);
            const QString about = widget->objectName() + " \"" + name + '"';
            QVERIFY2(!name.trimmed().isEmpty() && !name.trimmed().endsWith(':'), qPrintable(about));
            QVERIFY2(m_hasChinese || !name.contains(chinese), qPrintable(about));
            ++checked;
        }
        QVERIFY(checked > 0);
    }
    void checkDialog(const char* button) const
    {
        DialogAnswerer answers;
        answers.expect<setui>([this](setui& dialog) {
            checkNames(&dialog);
            dialog.reject();
        });
        click(button);
        QVERIFY(answers.isDone());
    }

    static QStringList rows(QWidget* view)
    {
        QStringList list;
        QAccessibleInterface* all = QAccessible::queryAccessibleInterface(view);
        for (int n = 0; n < all->childCount(); ++n) {
            const QAccessibleInterface* cell = all->child(n);
            const QString more = cell->text(QAccessible::Description);
            list << cell->text(QAccessible::Name) + (more.isEmpty() ? "" : " (" + more + ")");
        }
        return list;
    }

    /// "area/widget" for every stop from `first` until the keys are there again.
    QStringList walk(QWidget* first, Qt::Key key) const
    {
        QStringList stops;
        first->setFocus();
        QWidget* at = first;
        do {
            QString area;
            for (const QWidget* in = at; in && area.isEmpty(); in = in->parentWidget()) {
                static const QStringList areas{"device_list_bar", "deviceView",     "device_info",
                                               "monitor_top",     "monitor_bottom", "config_area",
                                               "control_area"};
                area = areas.contains(in->objectName()) ? in->objectName() : QString();
            }
            stops << area + '/' + at->objectName();
            const bool isUsable = at->isVisible() && at->isEnabled() &&
                                  !qobject_cast<QScrollArea*>(at) && !spoken(at).isEmpty();
            if (!isUsable)
                qWarning("no use of %s", qPrintable(stops.last()));
            QTest::keyClick(at, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
            QWidget* next = QApplication::focusWidget();
            if (!isUsable || !next || next == at || stops.size() > 99)
                return {"stuck at " + stops.last()};
            at = next;
        } while (at != first);
        return stops;
    }

    /// The key of the menu in `widget`; of what is offered `choice` is chosen, empty: nothing.
    void menuByKey(QWidget* widget, QStringList& offered, const QString& choice)
    {
        activate();
        offered.clear();
        DialogAnswerer answers;
        answers.expect<QMenu>([&](QMenu& menu) {
            QAction* wanted = nullptr;
            const auto actions = menu.actions();
            for (QAction* action : actions) {
                if (!action->isSeparator())
                    offered << action->text();
                wanted = action->text() == choice ? action : wanted;
            }
            if (wanted)
                menu.setActiveAction(wanted);
            QTest::keyClick(&menu, wanted ? Qt::Key_Return : Qt::Key_Escape);
        });
        widget->setFocus(Qt::TabFocusReason);
        QTest::keyClick(&window(), Qt::Key_F10, Qt::ShiftModifier);
        QTRY_VERIFY(!offered.isEmpty() && !QApplication::activePopupWidget());
    }

    bool m_hasChinese = true;
};

QTEST_MAIN(tst_Access)
#include "tst_access.moc"
