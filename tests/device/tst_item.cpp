// SPDX-License-Identifier: MIT
#include "common/box_protocol.h"
#include "device/item.h"
#include "simulator/virtual_box.h"
#include "tests/support/files.h"

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
    void upgradeSucceeds();
    void wrongDigestIsRetried();
    void retriesAreSpaced();
    void silentActivationCounts();
    void deletedItemLeavesItsJobAlone();

private:
    QTemporaryDir m_data;
    QString m_file;
    QString m_md5;
    std::unique_ptr<sim::VirtualBox> m_box;
    std::unique_ptr<Item> m_item;
};

void tst_Item::initTestCase()
{
    qputenv("APPDATA", m_data.path().toUtf8());
    m_file = writePackage(m_data.path() + "/KORA 1.2.0.623.dat", 200000);
    m_md5 = md5Of(readFile(m_file));
}

void tst_Item::init()
{
    sim::BoxSetup setup;
    setup.address = boxIp;
    setup.rebootMs = 300;
    m_box = std::make_unique<sim::VirtualBox>(setup);
    QVERIFY2(m_box->plugIn(), qPrintable(m_box->errorString()));
    m_item = std::make_unique<Item>();
    m_item->setProperty("deviceip", boxIp);
}

void tst_Item::cleanup()
{
    CommandRunner::endAll();
    m_item.reset();
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

void tst_Item::upgradeSucceeds()
{
    m_item->startUpgrade(m_file, m_md5);
    QVERIFY(m_item->property("upgrading").toBool());
    QTRY_VERIFY_WITH_TIMEOUT(m_item->property("upgradsuccessful").toBool(), 10000);
    QVERIFY(m_item->property("upgrade_ota_file").toBool());
    QVERIFY(!m_item->property("upgradtimeout").toBool());
    const QStringList tips = m_item->property("upgradtip").toStringList();
    QCOMPARE(tips.mid(0, 4), (QStringList{"开始上传固件(KORA 1.2.0.623.dat)", "上传固件 成功",
                                          "开始更新固件", "更新固件 成功"}));
    QTRY_COMPARE_WITH_TIMEOUT(m_box->parameter("eParam_FirmVersion"), QString("1.2.0.623"), 10000);
}

void tst_Item::wrongDigestIsRetried()
{
    QVERIFY(m_box->addFault("wrong-md5 times 1"));
    m_item->startUpgrade(m_file, m_md5);
    QTRY_VERIFY(m_item->property("upgradtimeout").toBool());
    QVERIFY(!m_item->property("upgradsuccessful").toBool());
    QTRY_VERIFY_WITH_TIMEOUT(m_item->property("upgradsuccessful").toBool(), 10000);
    const QString tips = m_item->property("upgradtip").toStringList().join('\n');
    QVERIFY2(tips.contains("上传固件 失败 原因 : {"), qPrintable(tips));
    QVERIFY2(tips.contains("重新开始上传固件(KORA 1.2.0.623.dat)"), qPrintable(tips));
}

void tst_Item::retriesAreSpaced()
{
    m_box->unplug();
    m_item->startUpgrade(m_file, m_md5);
    QTest::qWait(2000);
    const int tips = m_item->property("upgradtip").toStringList().size();
    QVERIFY2(tips >= 2 && tips <= 7, qPrintable(QString::number(tips)));
    // A batch that ended stops them.
    m_item->setProperty("upgrading", false);
    QTest::qWait(600);
    const int before = m_item->property("upgradtip").toStringList().size();
    QTest::qWait(1000);
    QCOMPARE(m_item->property("upgradtip").toStringList().size(), before);
}

void tst_Item::silentActivationCounts()
{
    QVERIFY(m_box->addFault("hang-up 0 on ota"));
    m_item->startUpgrade(m_file, m_md5);
    QTRY_VERIFY_WITH_TIMEOUT(m_item->property("upgradsuccessful").toBool(), 10000);
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
