// SPDX-License-Identifier: MIT
#include "ui/window/options.h"

#include <QTest>

class tst_Options : public QObject
{
    Q_OBJECT

private slots:
    void wrongOptionsAreNamed_data();
    void wrongOptionsAreNamed();
    void everythingSet();
    void helpAndVersion();
    void windowSystemOptionsAreLeftAlone();
};

void tst_Options::wrongOptionsAreNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");
    QTest::newRow("unknown") << QStringList{"--colour"} << "colour";
    QTest::newRow("no value") << QStringList{"--subnet"} << "subnet";
    QTest::newRow("other mask") << QStringList{"--subnet", "10.0.0.0/16"} << "10.0.0.0/16";
    QTest::newRow("host") << QStringList{"--subnet", "10.0.0.1"} << "10.0.0.1";
    QTest::newRow("second is wrong")
        << QStringList{"--subnet", "127.77.0.0/24", "--subnet", "x"} << "'x'";
    QTest::newRow("argument") << QStringList{"file.dat"} << "file.dat";
    QTest::newRow("server") << QStringList{"--update-server", "ftp://x"} << "ftp://x";
}

void tst_Options::wrongOptionsAreNamed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    const OptionsResult result = readOptions(QStringList{"tarn-hub"} + arguments);
    QCOMPARE(result.outcome, OptionsResult::Error);
    QVERIFY2(result.text.contains(named), qPrintable(result.text));
}

void tst_Options::everythingSet()
{
    const OptionsResult result =
        readOptions({"tarn-hub", "--subnet", "127.77.0.0/24", "--subnet=127.77.1.0/24", "--fping",
                     "/opt/my fping", "--update-server", "http://127.0.0.1:8080/"});
    QCOMPARE(result.outcome, OptionsResult::Run);
    QCOMPARE(result.options.sweep.subnets, (QStringList{"127.77.0.0/24", "127.77.1.0/24"}));
    QCOMPARE(result.options.sweep.fping, QString("/opt/my fping"));
    QCOMPARE(result.options.updateServer, QString("http://127.0.0.1:8080"));
    QVERIFY(readOptions({"tarn-hub"}).options.updateServer.endsWith(".example"));
}

void tst_Options::helpAndVersion()
{
    const OptionsResult help = readOptions({"tarn-hub", "--help"});
    QCOMPARE(help.outcome, OptionsResult::ShowText);
    for (const char* option : {"--subnet", "--fping", "--update-server"})
        QVERIFY2(help.text.contains(option), option);
    QCOMPARE(readOptions({"tarn-hub", "-v"}).text, QString("Tarn Hub 1.0.0.10\n"));
}

void tst_Options::windowSystemOptionsAreLeftAlone()
{
    QCOMPARE(readOptions({"tarn-hub", "-platform", "offscreen"}).outcome, OptionsResult::Run);
}

QTEST_GUILESS_MAIN(tst_Options)
#include "tst_options.moc"
