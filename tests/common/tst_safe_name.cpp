// SPDX-License-Identifier: MIT
#include "common/safe_name.h"

#include <QDir>
#include <QTest>

class tst_SafeName : public QObject
{
    Q_OBJECT

private slots:
    void staysInItsFolder_data();
    void staysInItsFolder();
};

void tst_SafeName::staysInItsFolder_data()
{
    QTest::addColumn<QString>("offered");
    QTest::addColumn<QString>("name");
    QTest::newRow("usual") << "KORA_1.2.0.623.dat"
                           << "KORA_1.2.0.623.dat";
    QTest::newRow("blank") << "my clip.mp4"
                           << "my clip.mp4";
    QTest::newRow("other alphabets") << "录像.mp4"
                                     << "录像.mp4";
    QTest::newRow("upwards") << "../../x.mp4"
                             << "x.mp4";
    QTest::newRow("only upwards") << ".."
                                  << "download";
    QTest::newRow("absolute") << "/etc/passwd"
                              << "passwd";
    QTest::newRow("windows path") << "C:\\Windows\\x.exe"
                                  << "x.exe";
    QTest::newRow("stream of a file") << "a:b?.mp4"
                                      << "ab.mp4";
    QTest::newRow("hidden") << ".bashrc"
                            << "bashrc";
    QTest::newRow("reserved") << "CON.txt"
                              << "_CON.txt";
    QTest::newRow("control characters") << QString("a\n\tb\x7f.mp4") << "ab.mp4";
    QTest::newRow("trailing dot") << "x.mp4. "
                                  << "x.mp4";
    QTest::newRow("nothing left") << "///"
                                  << "download";
}

void tst_SafeName::staysInItsFolder()
{
    QFETCH(QString, offered);
    QTEST(safeFileName(offered), "name");
    QVERIFY(safeFileName(QString(5000, 'a') + ".mp4").size() < 256);
}

QTEST_GUILESS_MAIN(tst_SafeName)
#include "tst_safe_name.moc"
