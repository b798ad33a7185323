// SPDX-License-Identifier: MIT
#include "device/device_registry.h"

#include "common/spark_http.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "tests/support/files.h"

#include <QTemporaryDir>
#include <QTest>

/// Checks that overlap, with a tool that answers when it is told to.
class tst_DeviceRegistry : public QObject
{
    Q_OBJECT

private slots:
    void onlyTheNewestAnswerOfWhomWasAskedCounts();
};

void tst_DeviceRegistry::onlyTheNewestAnswerOfWhomWasAskedCounts()
{
    // A check of n addresses waits for the file "n" and prints what is in it.
    const QTemporaryDir folder;
    const QString tool = writeScript(folder.filePath("tool"),
                                     "shift 5; f='" + folder.path().toUtf8() +
                                         "'/$#; while [ ! -e $f ]; do sleep 0.02; done; cat $f\n");
    TreeModel model;
    int answers = 0;
    DeviceRegistry* receiver = nullptr;
    DeviceRegistry registry(model, *Spark_Http::instance(), {tool, {}}, [&](Spark_Thread* check) {
        connect(
            check, &Spark_Thread::S_refreshDeviceIP, this,
            [&, check](const QStringList& ips) {
                receiver->setReachable(ips, check);
                ++answers;
            },
            Qt::QueuedConnection);
    });
    receiver = &registry;
    const auto shown = [&] {
        QStringList hosts;
        for (const Item* box : model.items("KORA"))
            hosts << box->address().section('.', 3) + (box->isOnline() ? "+" : "-");
        return hosts.join(' ');
    };
    const auto answer = [&](int asked, const QByteArray& lines) {
        const int before = answers;
        writeFile(folder.filePath("part"), lines);
        QFile::rename(folder.filePath("part"), folder.filePath(QString::number(asked)));
        QTRY_COMPARE(answers, before + 1);
    };
    for (const char* ip : {"127.9.9.1", "127.9.9.2", "127.9.9.3"}) {
        registry.addDevice(ip, koraFamily());
        registry.checkStates();
    }
    registry.addDevice("127.9.9.4", koraFamily());
    answer(2, "127.9.9.1\n");
    QCOMPARE(shown(), QString("1+ 2- 3+ 4+")); // neither 3 nor 4 was asked
    answer(1, "");
    QCOMPARE(shown(), QString("1+ 2- 3+ 4+")); // older than the one before
    registry.forgetIdleDevices();
    registry.addDevice("127.9.9.3", koraFamily());
    answer(3, "");
    QCOMPARE(shown(), QString("3+")); // filed again, so seen, after that check had begun
    registry.stop();
}

QTEST_GUILESS_MAIN(tst_DeviceRegistry)
#include "tst_device_registry.moc"
