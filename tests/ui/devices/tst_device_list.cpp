// SPDX-License-Identifier: MIT
#include "tests/support/files.h"
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"
#include "ui/devices/device_filter.h"
#include "ui/devices/device_hint.h"
#include "ui/devices/device_menu.h"

#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>

/// Finding one box among many.
class tst_DeviceList : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<Item*>("Item*");
        addBox(1)->setParameter("eParam_DeviceName", "Stage left");
        addBox(2)->setParameter("eParam_DeviceName", "=Stage  right");
        addBox(3)->setParameter("eParam_DeviceName", QString::fromUtf8("大厅 <b>"));
        addBox(4, sim::BoxModel::Lantern);
        openKnowing({1, 2, 3});
        QTRY_VERIFY_WITH_TIMEOUT(item(4) && item(1)->name() == "Stage left", 15000);
    }
    void cleanup() { field()->clear(); }
    void cleanupTestCase()
    {
        QTest::qWait(500); // the field's button fades, and nobody would clean up behind that
        close();
    }

    void findsByWhatIsKnown_data()
    {
        columns<QString, QList<int>>("words", "hosts");
        row("nothing", QString(), QList<int>{1, 2, 3, 4});
        row("address", ip(2), QList<int>{2});
        row("name", QString("stage"), QList<int>{1, 2});
        row("name and state", QString(" right\u3000在线 "), QList<int>{2});
        row("letters of another script", QString::fromUtf8("大厅"), QList<int>{3});
        row("family", QString("lantern"), QList<int>{4});
        row("nobody", QString("[*"), QList<int>{});
        row("away", QString("离线"), QList<int>{});
    }
    void findsByWhatIsKnown()
    {
        QFETCH(QString, words);
        field()->setText(words);
        QTEST(visible(), "hosts");
        const auto* hint = child<QWidget>("device_hint");
        QCOMPARE(hint->isVisible(), visible().isEmpty());
        field()->clear();
        QCOMPARE(visible(), (QList<int>{1, 2, 3, 4}));
    }

    void addressOfTheCard()
    {
        const QString mac = item(3)->macAddress();
        for (QString words : {mac, mac.toLower(), QString(mac).remove(':')}) {
            field()->setText(words);
            QCOMPARE(visible(), QList<int>{3});
        }
    }

    /// Nothing is done to a box that nobody sees.
    void highlightedStaysInSight()
    {
        clickRow(1);
        field()->setText("right");
        QCOMPARE(visible(), (QList<int>{1, 2}));
        deviceView()->selectAll();
        QStringList chosen;
        const auto boxes = deviceView()->selectedBoxes();
        for (const Item* box : boxes)
            chosen << box->address();
        QCOMPARE(chosen, (QStringList{ip(1), ip(2)}));
        deviceView()->clearSelection();
        // Neither by a key that starts from the row that was taken out of sight.
        QTRY_COMPARE(visible(), QList<int>{2});
        clickRow(2);
        field()->setText("left");
        QTest::mouseClick(deviceView()->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          deviceView()->visualRect(indexOf(2)).center());
        QTRY_COMPARE(visible(), QList<int>{1});
        QTest::keyClick(deviceView(), Qt::Key_Space);
        const auto after = deviceView()->selectedBoxes();
        QVERIFY(!after.contains(item(2)));
        deviceView()->clearSelection();
    }

    void opensTheGroupOfWhatItFinds()
    {
        click("collapse");
        QVERIFY(visible().isEmpty());
        field()->setText("left");
        QCOMPARE(visible(), QList<int>{1});
    }

    /// What is known of a box comes later than the box.
    void followsWhatIsTold()
    {
        field()->setText("9.9.9");
        QCOMPARE(visible(), QList<int>{});
        m_version = item(3)->firmwareVersion();
        lan().find(ip(3))->setParameter("eParam_FirmVersion", "9.9.9.1");
        emit deviceView()->S_ActionClicked(Action::Select, item(3));
        QTRY_COMPARE(visible(), QList<int>{3});
        lan().find(ip(3))->setParameter("eParam_FirmVersion", m_version);
        emit deviceView()->S_ActionClicked(Action::Select, nullptr);
    }

    void newcomerIsHiddenToo()
    {
        field()->setText("stage");
        sim::VirtualBox* box = addBox(5);
        QTRY_VERIFY_WITH_TIMEOUT(item(5), 15000);
        QTest::qWait(50);
        QCOMPARE(visible(), (QList<int>{1, 2}));
        // It is told what it is called later than that it is there.
        box->setParameter("eParam_DeviceName", "Stage door");
        item(5)->setName(QString());
        readAfter(5, [&] {
            field()->clear();
            clickRow(5);
        });
        QCOMPARE(item(5)->name(), QString("Stage door"));
        deviceView()->clearSelection();
        field()->setText("door");
        QCOMPARE(visible(), QList<int>{5});
    }

    void keysLeadThereAndBack()
    {
        auto* bar = child<QWidget>("device_filter_bar");
        QVERIFY(bar->isHidden());
        window().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window()));
        deviceView()->setFocus();
        QTest::keyClick(deviceView(), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(bar->isVisible() && field()->hasFocus());
        QTest::keyClicks(field(), "left");
        QCOMPARE(visible(), QList<int>{1});
        const Item& group = *deviceView()->treeModel()->findGroup("KORA");
        QCOMPARE(TreeModel::groupCount(group), QString("显示 1/%1").arg(group.childCount()));
        QTest::keyClick(field(), Qt::Key_Down);
        QVERIFY(deviceView()->hasFocus());
        QTest::keyClick(deviceView(), Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(field()->selectedText(), QString("left"));
        QTest::keyClick(deviceView(), Qt::Key_Down);
        QTest::keyClick(deviceView(), Qt::Key_Escape);
        QVERIFY(bar->isHidden() && deviceView()->hasFocus());
        QVERIFY(visible().size() >= 4);
        QVERIFY(!TreeModel::groupCount(group).contains("显示"));
        QTest::keyClick(deviceView(), Qt::Key_F, Qt::ControlModifier);
        QTest::keyClick(field(), Qt::Key_Escape);
        QVERIFY(bar->isHidden() && deviceView()->hasFocus());
        click("filterDevices");
        QVERIFY(bar->isVisible());
        click("filterDevices");
        QVERIFY(bar->isHidden());
    }

    void menuOffersNameAndInventory()
    {
        const QString path = appData() + "/list.csv";
        DialogAnswerer answers;
        choose(2, "复制名称", answers);
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("=Stage right"));
        choose(0, "导出设备清单…", answers);
        answers.expect<QFileDialog>([&](QFileDialog& dialog) { choosePath(dialog, path); });
        QTRY_VERIFY(answers.isDone() && QFile::exists(path));
        const QStringList lines = QString::fromUtf8(readFile(path)).split("\r\n");
        QVERIFY(lines.size() >= 6);
        const QString mac = item(2)->macAddress();
        // No spreadsheet runs what a box calls itself.
        QVERIFY2(lines.at(2).startsWith("\"'=Stage right\",\"" + ip(2) + "\",\"" + mac +
                                        "\",\"KORA\",\""),
                 qPrintable(lines.at(2)));
        QVERIFY(lines.at(2).contains("\"在线\",\"" + QString::number(QDate::currentDate().year())));
        QTRY_VERIFY(window().findChild<messageBox*>());
        QCOMPARE(window().findChild<messageBox*>()->text(), "设备清单已保存到" + path);
    }

    void countsWhoIsThere()
    {
        const Item& group = *item(1)->parentItem();
        const int boxes = group.childCount();
        QCOMPARE(TreeModel::groupCount(group), QString::number(boxes));
        item(1)->setOnline(false);
        QCOMPARE(TreeModel::groupCount(group), QString("%1/%2 在线").arg(boxes - 1).arg(boxes));
        item(1)->setOnline(true);
    }

    void emptyListSaysWhatIsSearched()
    {
        const auto networks = [](const QStringList& blocks, const QStringList& own) {
            SweepSettings settings;
            settings.subnets = blocks;
            return DeviceHint::networks(settings, own);
        };
        QCOMPARE(networks({}, {"10.1.2.3", "10.1.2.4", "169.254.7.8", "x"}),
                 (QStringList{"10.1.2.0/24", "169.254.0.0/16"}));
        QCOMPARE(networks({"127.1.2.0/24"}, {"10.1.2.3"}), QStringList{"127.1.2.0/24"});
        QCOMPARE(DeviceHint::advice({"a"}, 3), QString("a"));
        QVERIFY(DeviceHint::advice({"a", "b", "c", "d", "e"}, 12).startsWith("a\nb\nc\nd\n…\n\n"));
        QVERIFY(DeviceHint::advice({"a"}, 12).contains("12秒"));
    }

private:
    QModelIndex indexOf(int host) const { return deviceView()->treeModel()->indexOf(item(host)); }
    QLineEdit* field() const { return child<QLineEdit>("deviceFilter"); }

    /// The boxes in sight, by the last number of their addresses.
    QList<int> visible() const
    {
        QList<int> hosts;
        const TreeModel* model = deviceView()->treeModel();
        const auto items = model->items();
        for (const Item* box : items) {
            if (box->isDevice() && !deviceView()->visualRect(model->indexOf(box)).isEmpty())
                hosts << box->address().section('.', 3).toInt();
        }
        return hosts;
    }

    QString m_version;

    /// An entry of the menu of a box, or of a group for host 0.
    void choose(int host, const QString& entry, DialogAnswerer& answers)
    {
        const TreeModel* model = deviceView()->treeModel();
        const Item* row = host ? item(host) : item(1)->parentItem();
        answers.expect<QMenu>([entry](QMenu& menu) {
            const auto actions = menu.actions();
            for (QAction* action : actions) {
                if (action->text() == entry)
                    menu.setActiveAction(action);
            }
            QVERIFY(menu.activeAction());
            QTest::keyClick(&menu, Qt::Key_Return);
        });
        emit deviceView()->customContextMenuRequested(
            deviceView()->visualRect(model->indexOf(row)).center());
    }
};

QTEST_MAIN(tst_DeviceList)
#include "tst_device_list.moc"
