// SPDX-License-Identifier: MIT
#include "device/item.h"
#include "device/row_zones.h"
#include "device/tree_model.h"
#include "tests/support/table.h"

#include <QAbstractItemModelTester>

/// The tree of boxes, where everything stands in a row of it, and what a click there means.
class tst_TreeModel : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_tester.reset();
        m_model = std::make_unique<TreeModel>();
        // Checks the model's own consistency at every change.
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    }

    void boxesAreSortedByNumber()
    {
        Item* kora = group("KORA");
        for (const char* ip :
             {"192.168.1.10", "192.168.1.9", "10.0.0.20", "192.168.1.100", "10.0.0.3"})
            box(QString::fromLatin1(ip), kora);
        QCOMPARE(addresses(kora), (QStringList{"10.0.0.3", "10.0.0.20", "192.168.1.9",
                                               "192.168.1.10", "192.168.1.100"}));
        QCOMPARE(kora->child(0)->level(), 2);
    }

    void lookups()
    {
        Item* kora = group("KORA");
        Item* first = box("10.0.0.1", kora);
        Item* second = box("10.0.0.2", kora);
        second->setProperty("MACAddress", "00:11:22:33:44:55");
        QCOMPARE(m_model->find("10.0.0.1"), first);
        QCOMPARE(m_model->find("00:11:22:33:44:55"), second);
        QCOMPARE(m_model->find("KORA"), kora);
        QVERIFY(!m_model->find(""));
        QVERIFY(!m_model->find("10.0.0"));
        // A box cannot pass for a group by what it says of itself.
        second->setProperty("MACAddress", "ORBIT·2");
        QVERIFY(!m_model->findGroup("ORBIT·2"));
        QCOMPARE(m_model->items().size(), 3);
        QCOMPARE(m_model->items("KORA").size(), 2);
        QVERIFY(m_model->items("ORBIT·2").isEmpty());
    }

    void removingKeepsTheRest()
    {
        Item* kora = group("KORA");
        for (int n = 1; n <= 5; ++n)
            box(QString("10.0.0.%1").arg(n), kora);
        const QPersistentModelIndex last = m_model->indexOf(m_model->find("10.0.0.5"));
        m_model->remove(m_model->find("10.0.0.2"));
        QCOMPARE(addresses(kora), (QStringList{"10.0.0.1", "10.0.0.3", "10.0.0.4", "10.0.0.5"}));
        QCOMPARE(last.row(), 3);
        m_model->remove(kora);
        QCOMPARE(m_model->rowCount(), 0);
        QVERIFY(!last.isValid());
    }

    void newFirmware_data()
    {
        columns<QString, QString, bool>("own", "package", "marked");
        row("newer", "1.2.0.517", "1.2.0.623", true);
        row("same", "1.2.0.517", "1.2.0.517", false);
        row("older", "1.2.0.623", "1.2.0.517", false);
        row("in a file name", "v1.2.0.517", "kora_v1.2.0.623", true);
        row("letters in any case", "1.2.0.51b", "1.2.0.51A", false);
        row("no package", "1.2.0.517", "", false);
        row("unknown own", "", "1.2.0.623", false);
    }
    void newFirmware()
    {
        const auto [own, package] = cells<QString, QString>();
        Item item;
        item.setProperty("FirmVersion", own);
        item.setProperty("otaFile", package);
        QTEST(item.hasNewerFirmware(), "marked");
    }

    void tooltips()
    {
        Item* item = box("10.0.0.1", group("KORA"));
        const QModelIndex index = m_model->indexOf(item);
        m_model->setHover(index, Action::NewFirmware);
        QCOMPARE(m_model->data(index, Qt::ToolTipRole).toString(), QString("发现新固件可升级"));
        // The zone belongs to one row only, and not to a row that has gone.
        m_model->remove(item);
        const QModelIndex group = m_model->index(0, 0);
        QCOMPARE(m_model->data(group, Qt::ToolTipRole).toString(), QString("KORA"));
    }

    void clicksOnABox_data()
    {
        // In a row from 0 to 299, 32 high; the mark of the state begins at (2 - 1) * 21 + 10.
        columns<int, int, int>("x", "y", "action");
        row("left of everything", 5, 16, int(Action::Title));
        row("state", 31, 16, int(Action::Online));
        row("state, its end", 46, 16, int(Action::Online));
        row("state, a finger beside it", 28, 2, int(Action::Online));
        row("title", 60, 16, int(Action::Title));
        row("between the icons' heights", 150, 31, int(Action::Title));
        row("restart of the device", 280, 16, int(Action::RestartDevice));
        row("restart of the software", 257, 16, int(Action::RestartSoftware));
        row("newer firmware", 233, 16, int(Action::NewFirmware));
        row("left of the icons", 215, 16, int(Action::Title));
        row("right of the icons", 299, 16, int(Action::Title));
    }
    void clicksOnABox()
    {
        const auto [x, y] = cells<int, int>();
        const Item* item = marked();
        QTEST(int(RowZones({0, 0, 300, 32}, *item, false).at({x, y})), "action");
        // Wherever the row stands in its list.
        QTEST(int(RowZones({7, 640, 300, 32}, *item, false).at({x + 7, y + 640})), "action");
    }

    void groupsAndOtherModels()
    {
        const QRect row(0, 0, 300, 32);
        Item* orbit = group("ORBIT·2");
        QCOMPARE(RowZones(row, *orbit, true).leading().action, Action::GroupExpanded);
        QCOMPARE(RowZones(row, *orbit, false).leading().action, Action::GroupCollapsed);
        const RowZones zones(row, *box("10.0.0.6", orbit), false);
        QVERIFY(zones.rightIcons().isEmpty());
        QCOMPARE(zones.title().right(), row.right());
        Item* kora = marked();
        kora->setOnline(false);
        kora->setPackageName("KORA_1.2.0.517");
        const RowZones old(row, *kora, false);
        QCOMPARE(old.leading().action, Action::Offline);
        QCOMPARE(old.rightIcons().size(), 2);
    }

    void informationHasTwoColumns()
    {
        const auto line = Item::makeInformation("MAC地址", "02:4B", "10.0.0.5");
        const RowZones zones({0, 0, 300, 32}, *line, false);
        QCOMPARE(zones.at(zones.content().center()), Action::Content);
        QCOMPARE(zones.at(zones.title().center()), Action::Title);
        QVERIFY(!zones.title().intersects(zones.content()));
    }

    void nothingInARowOverlaps()
    {
        const Item* item = marked();
        for (const int width : {350, 300, 200, 120, 60, 1}) {
            const RowZones zones({0, 0, width, 32}, *item, false);
            QVERIFY(zones.title().width() >= 0);
            for (const RowZones::Zone& zone : zones.rightIcons()) {
                QCOMPARE(zone.rect.size(), QSize(RowZones::IconSize, RowZones::IconSize));
                QVERIFY(zones.title().isEmpty() || !zone.rect.intersects(zones.title()));
                for (const RowZones::Zone& other : zones.rightIcons())
                    QVERIFY(other.action == zone.action || !other.rect.intersects(zone.rect));
            }
        }
    }

private:
    Item* group(const QString& title)
    {
        Item* item = Item::makeGroup(title).release();
        m_model->append(item, m_model->root(), true);
        return item;
    }

    Item* box(const QString& ip, Item* parent)
    {
        Item* item = Item::makeBox(ip).release();
        m_model->append(item, parent, false);
        return item;
    }

    /// A box with two versions, so that it has all icons.
    Item* marked()
    {
        Item* item = box("10.0.0.5", group(koraFamily()));
        item->setFirmwareVersion("1.2.0.517");
        item->setPackageName("KORA_1.2.0.623");
        return item;
    }

    static QStringList addresses(const Item* parent)
    {
        QStringList list;
        for (int row = 0; row < parent->childCount(); ++row)
            list << parent->child(row)->address();
        return list;
    }

    std::unique_ptr<TreeModel> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

QTEST_GUILESS_MAIN(tst_TreeModel)
#include "tst_tree_model.moc"
