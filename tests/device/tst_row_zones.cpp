// SPDX-License-Identifier: MIT
#include "device/item.h"
#include "device/row_zones.h"
#include "tests/support/table.h"

/// Where everything stands in a row, and what a click there means.
class tst_RowZones : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void clicksOnABox_data();
    void clicksOnABox();
    void groupsAndOtherModels();
    void informationHasTwoColumns();
    void nothingOverlaps();

private:
    Item* add(Item* parent, std::unique_ptr<Item> item) const;

    std::unique_ptr<Item> m_root;
    Item* m_box = nullptr;
};

Item* tst_RowZones::add(Item* parent, std::unique_ptr<Item> item) const
{
    Item* added = item.release();
    parent->appendChild(added, false);
    return added;
}

void tst_RowZones::init()
{
    m_root = std::make_unique<Item>();
    m_box = add(add(m_root.get(), Item::makeGroup(koraFamily())), Item::makeBox("10.0.0.5"));
    m_box->setFirmwareVersion("1.2.0.517");
    m_box->setPackageName("KORA_1.2.0.623");
}

void tst_RowZones::clicksOnABox_data()
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

void tst_RowZones::clicksOnABox()
{
    const auto [x, y] = cells<int, int>();
    QTEST(int(RowZones({0, 0, 300, 32}, *m_box, false).at({x, y})), "action");
    // Wherever the row stands in its list.
    QTEST(int(RowZones({7, 640, 300, 32}, *m_box, false).at({x + 7, y + 640})), "action");
}

void tst_RowZones::groupsAndOtherModels()
{
    const QRect row(0, 0, 300, 32);
    Item* group = add(m_root.get(), Item::makeGroup("ORBIT·2"));
    QCOMPARE(RowZones(row, *group, true).leading().action, Action::GroupExpanded);
    QCOMPARE(RowZones(row, *group, false).leading().action, Action::GroupCollapsed);
    const RowZones zones(row, *add(group, Item::makeBox("10.0.0.6")), false);
    QVERIFY(zones.rightIcons().isEmpty());
    QCOMPARE(zones.title().right(), row.right());
    m_box->setOnline(false);
    m_box->setPackageName("KORA_1.2.0.517");
    const RowZones old(row, *m_box, false);
    QCOMPARE(old.leading().action, Action::Offline);
    QCOMPARE(old.rightIcons().size(), 2);
}

void tst_RowZones::informationHasTwoColumns()
{
    const Item* line = add(m_root.get(), Item::makeInformation("MAC地址", "02:4B", "10.0.0.5"));
    const RowZones zones({0, 0, 300, 32}, *line, false);
    QCOMPARE(zones.at(zones.content().center()), Action::Content);
    QCOMPARE(zones.at(zones.title().center()), Action::Title);
    QVERIFY(!zones.title().intersects(zones.content()));
}

void tst_RowZones::nothingOverlaps()
{
    for (const int width : {350, 300, 200, 120, 60, 1}) {
        const RowZones zones({0, 0, width, 32}, *m_box, false);
        QVERIFY(zones.title().width() >= 0);
        for (const RowZones::Zone& zone : zones.rightIcons()) {
            QCOMPARE(zone.rect.size(), QSize(RowZones::IconSize, RowZones::IconSize));
            QVERIFY(zones.title().isEmpty() || !zone.rect.intersects(zones.title()));
            for (const RowZones::Zone& other : zones.rightIcons())
                QVERIFY(other.action == zone.action || !other.rect.intersects(zone.rect));
        }
    }
}

QTEST_GUILESS_MAIN(tst_RowZones)
#include "tst_row_zones.moc"
