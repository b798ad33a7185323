// SPDX-License-Identifier: MIT
#include "device/item.h"
#include "device/tree_model.h"
#include "tests/support/table.h"

#include <QAbstractItemModelTester>

class tst_TreeModel : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void boxesAreSortedByNumber();
    void lookups();
    void removingKeepsTheRest();
    void newFirmware_data();
    void newFirmware();
    void tooltips();

private:
    Item* group(const QString& title);
    Item* box(const QString& ip, Item* parent);
    static QStringList addresses(const Item* parent);

    std::unique_ptr<TreeModel> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

void tst_TreeModel::init()
{
    m_tester.reset();
    m_model = std::make_unique<TreeModel>();
    // Checks the model's own consistency at every change.
    m_tester = std::make_unique<QAbstractItemModelTester>(
        m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
}

Item* tst_TreeModel::group(const QString& title)
{
    Item* item = Item::makeGroup(title).release();
    m_model->append(item, m_model->root(), true);
    return item;
}

Item* tst_TreeModel::box(const QString& ip, Item* parent)
{
    Item* item = Item::makeBox(ip).release();
    m_model->append(item, parent, false);
    return item;
}

QStringList tst_TreeModel::addresses(const Item* parent)
{
    QStringList list;
    for (int row = 0; row < parent->childCount(); ++row)
        list << parent->child(row)->address();
    return list;
}

void tst_TreeModel::boxesAreSortedByNumber()
{
    Item* kora = group("KORA");
    for (const char* ip : {"192.168.1.10", "192.168.1.9", "10.0.0.20", "192.168.1.100", "10.0.0.3"})
        box(QString::fromLatin1(ip), kora);
    QCOMPARE(addresses(kora), (QStringList{"10.0.0.3", "10.0.0.20", "192.168.1.9", "192.168.1.10",
                                           "192.168.1.100"}));
    QCOMPARE(kora->child(0)->level(), 2);
}

void tst_TreeModel::lookups()
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

void tst_TreeModel::removingKeepsTheRest()
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

void tst_TreeModel::newFirmware_data()
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

void tst_TreeModel::newFirmware()
{
    const auto [own, package] = cells<QString, QString>();
    Item item;
    item.setProperty("FirmVersion", own);
    item.setProperty("otaFile", package);
    QTEST(item.hasNewerFirmware(), "marked");
}

void tst_TreeModel::tooltips()
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

QTEST_GUILESS_MAIN(tst_TreeModel)
#include "tst_tree_model.moc"
