// SPDX-License-Identifier: MIT
#include "common/box_protocol.h"
#include "device/item.h"
#include "tests/support/files.h"
#include "tests/support/plugged_box.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace
{

const QString boxIp = TEST_BLOCK ".1";

} // namespace

/// The jobs that an item runs for its box: real curl, a virtual box.
class tst_Item : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void startsWithItsDefaults();
    void deletedItemLeavesItsJobAlone();

private:
    QTemporaryDir m_data;
    std::unique_ptr<sim::VirtualBox> m_box;
    std::unique_ptr<Item> m_item;
};

void tst_Item::initTestCase()
{
    qputenv("APPDATA", m_data.path().toUtf8());
}

void tst_Item::init()
{
    m_box = pluggedBox(boxIp);
    m_item = std::make_unique<Item>();
    m_item->setProperty("deviceip", boxIp);
}

void tst_Item::cleanup()
{
    CommandRunner::endAll();
    m_item.reset();
    m_box.reset();
}

void tst_Item::startsWithItsDefaults()
{
    const Item item;
    QCOMPARE(item.property("online").toBool(), true);
    QCOMPARE(item.property("rtime").toInt(), 600);
    for (const char* name : {"isdir", "upgrading", "upgradtimeout", "upgradsuccessful"})
        QVERIFY2(item.property(name).isValid() && !item.property(name).toBool(), name);
    QVERIFY(!item.property("upgradtip").isValid());
}

void tst_Item::deletedItemLeavesItsJobAlone()
{
    QVERIFY(m_box->addFault("slow 300"));
    m_item->execCurl(BoxProtocol::controlCommand("hxenc_on", boxIp), {{"exectype", "x"}});
    m_item.reset();
    // The command itself goes on: the box still gets it.
    QTRY_COMPARE(m_box->requests().size(), 1);
    QTRY_VERIFY(m_box->activity().compressedEncoder);
}

QTEST_GUILESS_MAIN(tst_Item)
#include "tst_item.moc"
