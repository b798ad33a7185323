// SPDX-License-Identifier: MIT
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"

#include <QDir>
#include <QLabel>
#include <QToolTip>

/// The window finds boxes, files them, watches them and shows one.
class tst_Discovery : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<WindowFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void boxesAppearUnderTheirGroups()
    {
        for (const int host : {100, 9, 11})
            m_fixture->addBox(host);
        m_fixture->addBox(20, sim::BoxModel::Lantern);
        m_fixture->addBox(21, sim::BoxModel::Orbit);
        m_fixture->addBox(22, sim::BoxModel::River);
        m_fixture->open();
        QTRY_COMPARE_WITH_TIMEOUT(
            groups(), (QStringList{"KORA:9,11,100", "LANTERN:20", "ORBIT·2:21", "RIVER·2:22"}),
            10000);
        // Every box has told its firmware; nobody is asked a second time once it is in the list.
        QTRY_VERIFY(!m_fixture->item(100)->property("FirmVersion").toString().isEmpty());
        QTRY_VERIFY(!m_fixture->item(100)->macAddress().isEmpty());
        sim::VirtualBox* box = m_fixture->lan().find(m_fixture->ip(9));
        const int asked = box->requests().size();
        QTest::qWait(8000); // more than a whole round of the search
        QCOMPARE(box->requests().size(), asked);
        // A new box is found by the next round.
        m_fixture->addBox(10);
        QTRY_COMPARE_WITH_TIMEOUT(groups().first(), QString("KORA:9,10,11,100"), 12000);
    }

    void boxThatAnswersBothWaysIsOneBox()
    {
        // Its own interface answers, and so does a page that names two models.
        sim::BoxSetup setup;
        setup.address = m_fixture->ip(5);
        setup.dashboard = QStringList{"RIVER", "ORBIT"};
        QVERIFY(m_fixture->lan().add(setup)->plugIn());
        setup.address = m_fixture->ip(6);
        setup.model = sim::BoxModel::Orbit;
        QVERIFY(m_fixture->lan().add(setup)->plugIn());
        m_fixture->open();
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(5) && m_fixture->item(6), 10000);
        QTest::qWait(500);
        QStringList shown;
        const auto items = m_fixture->deviceView()->treeModel()->items();
        for (const Item* item : items)
            shown << item->title();
        QCOMPARE(shown.count(m_fixture->ip(5)), 1);
        QCOMPARE(shown.count(m_fixture->ip(6)), 1);
        QVERIFY(groups().contains("ORBIT·2:6") || groups().contains("ORBIT·2:5,6"));
    }

    void faultyHostsAreNoBoxes()
    {
        m_fixture->addBox(5);
        int host = 6;
        for (const char* fault : {"silent", "refuse", "garbage", "not-an-object", "no-value",
                                  "huge 10000000", "hang-up 50"})
            QVERIFY2(m_fixture->addBox(host++)->addFault(fault), fault);
        m_fixture->openWith({5});
        QTest::qWait(2500); // longer than a read waits
        QCOMPARE(groups(), QStringList{"KORA:5"});
    }

    void unpluggedBoxTurnsOfflineAndReturns()
    {
        sim::VirtualBox* box = m_fixture->addBox(7);
        sim::VirtualBox* other = m_fixture->addBox(8);
        m_fixture->addBox(9);
        m_fixture->openKnowing({7, 8, 9});
        m_fixture->clickRow(7);
        QTRY_COMPARE(m_fixture->information().size(), 6);

        box->unplug();
        other->unplug();
        Stopwatch clock;
        QTRY_VERIFY_WITH_TIMEOUT(!m_fixture->item(7)->property("online").toBool(), 15000);
        VERIFY_BELOW(clock.elapsed(), 10500);
        QVERIFY(m_fixture->item(9)->property("online").toBool());

        // They answer ping before their own interfaces do, and at one address it is another box.
        other->setParameter("eParam_MACAddress", "02:4B:4F:00:00:99");
        other->setParameter("eParam_FirmVersion", "1.3.0.1");
        QVERIFY(other->addFault("refuse") && other->plugIn());
        QVERIFY(box->addFault("refuse"));
        box->setParameter("eParam_DeviceName", "Renamed while away");
        QVERIFY(box->plugIn());
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7)->property("online").toBool(), 15000);
        QTRY_VERIFY(m_fixture->item(8)->isOnline());
        QTest::qWait(300); // what is asked at once fails
        box->clearFaults();
        other->clearFaults();
        // The selected one: what is shown of it is read again.
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->information().contains("设备名称=Renamed while away"),
                                 9000);
        QTRY_COMPARE_WITH_TIMEOUT(m_fixture->item(8)->macAddress(), QString("02:4B:4F:00:00:99"),
                                  9000);
        QTRY_COMPARE(m_fixture->item(8)->firmwareVersion(), QString("1.3.0.1"));
    }

    void nameGivenElsewhereIsSeen()
    {
        sim::VirtualBox* box = m_fixture->addBox(7);
        Options options = WindowFixture::options();
        options.sweep.namePauseMs = 1000;
        m_fixture->openKnowing({7}, options);
        box->setParameter("eParam_DeviceName", "Renamed on its page");
        QTRY_COMPARE_WITH_TIMEOUT(m_fixture->item(7)->name(), QString("Renamed on its page"),
                                  15000);
    }

    void selectionFillsTheInformation()
    {
        sim::VirtualBox* box = m_fixture->addBox(7);
        box->setParameter("eParam_DiskSpace", "51200");
        // The replies come in another order than they were asked for.
        QVERIFY(box->addFault("slow 300 on eParam_DeviceName"));
        m_fixture->openWith({7});
        m_fixture->clickRow(7);
        QTRY_COMPARE(m_fixture->information().size(), 6);
        QStringList captions;
        const QStringList rows = m_fixture->information();
        for (const QString& row : rows)
            captions << row.section('=', 0, 0);
        QCOMPARE(captions, (QStringList{"设备名称", "固件版本", "硬件版本", "NDI SDK版本",
                                        "剩余磁盘空间", "MAC地址"}));
        QVERIFY(rows.contains("剩余磁盘空间=51200 MB"));
        QCOMPARE(m_fixture->window().property("deviceip").toString(), m_fixture->ip(7));
        QCOMPARE(m_fixture->child<QLabel>("device_info_title_value")->text(),
                 QString("%1(%1)").arg(m_fixture->ip(7)));
    }

    void quickSelectionsShowTheLast()
    {
        for (int host = 1; host <= 5; ++host) {
            sim::VirtualBox* box = m_fixture->addBox(host);
            box->setParameter("eParam_DeviceName", QString("box %1").arg(host));
            // Earlier ones answer later.
            QVERIFY(box->addFault(QString("slow %1 on read").arg(600 - host * 100)));
        }
        m_fixture->openKnowing({1, 2, 3, 4, 5});
        for (int n = 0; n < 10; ++n)
            m_fixture->clickRow(1 + n % 5);
        QTRY_COMPARE(m_fixture->information().size(), 6);
        QTest::qWait(1500); // longer than the slowest answers late
        QCOMPARE(m_fixture->information().size(), 6);
        QCOMPARE(m_fixture->information().first(), QString("设备名称=box 5"));
    }

    void hostileTextStaysText()
    {
        sim::VirtualBox* box = m_fixture->addBox(7);
        QVERIFY(box->addFault("text"));
        m_fixture->openWith({7});
        m_fixture->clickRow(7);
        QTRY_COMPARE(m_fixture->information().size(), 6);
        // What is no MAC address is shown, but never serves to find a box.
        QCOMPARE(m_fixture->item(7)->macAddress(), QString());
        QVERIFY(m_fixture->information().last().size() > 20);
    }

    void webManagedBoxShowsItsPage()
    {
        m_fixture->addBox(7);
        m_fixture->addBox(21, sim::BoxModel::Orbit);
        m_fixture->openWith({7, 21});
        m_fixture->clickRow(21);
        QVERIFY(m_fixture->child<QWidget>("web_widget")->isVisible());
        QVERIFY(m_fixture->child<QWidget>("middle_widget")->isHidden());
        QVERIFY(m_fixture->child<QWidget>("right_widget")->isHidden());
        m_fixture->clickRow(7);
        QVERIFY(m_fixture->child<QWidget>("web_widget")->isHidden());
        QVERIFY(m_fixture->child<QWidget>("right_widget")->isVisible());
        // Nothing selected: what belongs to a box goes.
        m_fixture->deviceView()->clearSelection();
        QVERIFY(m_fixture->child<QWidget>("right_widget")->isHidden());
        QVERIFY(m_fixture->information().isEmpty());
        QVERIFY(m_fixture->child<QWidget>("middle_widget")->isVisible());
    }

    void refreshFindsEverythingAgain()
    {
        for (const int host : {7, 8})
            m_fixture->addBox(host);
        m_fixture->addBox(20, sim::BoxModel::Lantern);
        m_fixture->open();
        QTRY_COMPARE_WITH_TIMEOUT(groups(), (QStringList{"KORA:7,8", "LANTERN:20"}), 10000);
        m_fixture->clickRow(7);
        m_fixture->item(8)->setProperty("upgrading", true);
        m_fixture->click("refreshDevice");
        // The selected row has gone, the box in an upgrade has stayed.
        QCOMPARE(groups(), QStringList{"KORA:8"});
        QVERIFY(m_fixture->child<QWidget>("right_widget")->isHidden());
        m_fixture->item(8)->setProperty("upgrading", false);
        QTRY_COMPARE_WITH_TIMEOUT(groups(), (QStringList{"KORA:7,8", "LANTERN:20"}), 12000);
    }

    void restartAsksFirst()
    {
        sim::VirtualBox* box = m_fixture->addBox(7);
        m_fixture->openWith({7});
        {
            const DialogAnswerer no(Qt::Key_Escape);
            m_fixture->clickRow(7, 26 - 8);
            QCOMPARE(no.texts(), QStringList{"确认要重启KORA设备吗? " + m_fixture->ip(7)});
        }
        // The software icon asks nothing and does nothing.
        m_fixture->clickRow(7, 26 + 24 - 8);
        QTest::qWait(300);
        QCOMPARE(box->activity().reboots, 0);
        {
            const DialogAnswerer yes;
            m_fixture->clickRow(7, 26 - 8);
        }
        QTRY_COMPARE(box->activity().reboots, 1);
        QTRY_VERIFY_WITH_TIMEOUT(QDir(m_fixture->dataFolder() + "log")
                                     .entryList({"*---" + m_fixture->ip(7) + "_*"})
                                     .size(),
                                 3000);
    }

    void tooltipsNameTheirZones()
    {
        m_fixture->addBox(7);
        m_fixture->openWith({7});
        TreeView* view = m_fixture->deviceView();
        const QRect row = view->visualRect(view->treeModel()->indexOf(m_fixture->item(7)));
        const auto tipAt = [&](int x) {
            QTest::mouseMove(view->viewport(), QPoint(x, row.center().y()));
            QMouseEvent move(QEvent::MouseMove, QPoint(x, row.center().y()), Qt::NoButton,
                             Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(view->viewport(), &move);
            return QToolTip::text();
        };
        QVERIFY2(tipAt(39).contains("在线"), qPrintable(QToolTip::text()));
        QVERIFY(tipAt(120).contains(m_fixture->ip(7)));
        QVERIFY(tipAt(row.right() - 18).contains("重启设备"));
        QVERIFY(tipAt(row.right() - 42).contains("重启软件"));
        m_fixture->item(7)->setProperty("online", false);
        m_fixture->item(7)->setProperty("title", "<b>x</b>");
        QVERIFY(tipAt(39).contains("离线"));
        QVERIFY2(tipAt(120).contains("&lt;b&gt;"), qPrintable(QToolTip::text()));
    }

private:
    QStringList groups() const
    {
        QStringList titles;
        const Item* root = m_fixture->deviceView()->treeModel()->root();
        for (int row = 0; row < root->childCount(); ++row) {
            const Item* group = root->child(row);
            QStringList boxes;
            for (int n = 0; n < group->childCount(); ++n)
                boxes << group->child(n)->address().section('.', 3);
            titles << group->title() + ":" + boxes.join(',');
        }
        return titles;
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

QTEST_MAIN(tst_Discovery)
#include "tst_discovery.moc"
