// SPDX-License-Identifier: MIT
#include "common/box_protocol.h"
#include "tests/support/plugged_box.h"
#include "tests/support/recording_item.h"

#include <QSignalSpy>
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
    void initTestCase() { qputenv("APPDATA", m_data.path().toUtf8()); }
    void init() { m_box = pluggedBox(boxIp); }
    void cleanup()
    {
        CommandRunner::endAll();
        m_box.reset();
    }
    void deletion();
    void startsWithItsDefaults();
    void deletedLeavesItsJobAlone();

private:
    QTemporaryDir m_data;
    std::unique_ptr<sim::VirtualBox> m_box;
};

void tst_Item::deletion()
{
    // The box must not take what follows the "&" for another field, and delete "take".
    for (const char* name : {"take", "take&file_name=other.mp4", "50%20.mp4"})
        m_box->addRecording(name, "x");
    for (const char* name : {"take&file_name=other.mp4", "50%20.mp4", "no such.mp4"}) {
        const auto item = recordingItem(boxIp, name);
        QSignalSpy ended(item.get(), &Item::deleteEnded);
        item->record_del();
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(ended.first().first().toBool(), QString(name) != "no such.mp4");
    }
    QCOMPARE(m_box->recordings(), QStringList("take"));
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

void tst_Item::deletedLeavesItsJobAlone()
{
    auto item = recordingItem(boxIp, QString());
    QVERIFY(m_box->addFault("slow 300"));
    item->execCurl(BoxProtocol::controlCommand("hxenc_on", boxIp), {{"exectype", "x"}});
    item.reset();
    // The command itself goes on: the box still gets it.
    QTRY_COMPARE(m_box->requests().size(), 1);
    QTRY_VERIFY(m_box->activity().compressedEncoder);
}

QTEST_GUILESS_MAIN(tst_Item)
#include "tst_item.moc"
