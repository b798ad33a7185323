// SPDX-License-Identifier: MIT
#include "common/box_protocol.h"
#include "common/json_map.h"

#include <QProcess>
#include <QTest>

/// What reaches a child process is decided by the splitting rule of processes, so every command
/// line here goes through the real one.
class tst_BoxProtocol : public QObject
{
    Q_OBJECT

private slots:
    void commandKeepsItsArguments_data();
    void commandKeepsItsArguments();
    void valueOutsideQuotesStaysOneArgument();
    void fillReadsNoValueAgain();
    void addresses_data();
    void addresses();
    void replies_data();
    void replies();
};

void tst_BoxProtocol::commandKeepsItsArguments_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("plain") << "fw.dat";
    QTest::newRow("blanks") << "my  firmware file.dat";
    QTest::newRow("quote inside") << "a\"b.dat";
    QTest::newRow("quote at the start") << "\"b.dat";
    QTest::newRow("quote at the end") << "b.dat\"";
    QTest::newRow("only quotes") << "\"\"";
    QTest::newRow("tries to add an argument") << "x\" -o /tmp/owned \"";
    QTest::newRow("leading dash") << "-o";
    QTest::newRow("numbers of the template") << "%1%2%3";
    QTest::newRow("backslashes") << "C:\\fw\\new.dat\\";
    QTest::newRow("other alphabets") << QString::fromUtf8("固件 \u200fעברית.dat");
}

void tst_BoxProtocol::commandKeepsItsArguments()
{
    QFETCH(QString, value);
    const QStringList words =
        QProcess::splitCommand(BoxProtocol::uploadCommand(value, QStringLiteral("10.0.0.5")));
    const QStringList expected{"curl",
                               "-X",
                               "POST",
                               "-F",
                               QStringLiteral("ota_file=@") + value,
                               "http://10.0.0.5:8081/upload"};
    QCOMPARE(words, expected);
}

void tst_BoxProtocol::valueOutsideQuotesStaysOneArgument()
{
    const QStringList words =
        QProcess::splitCommand(BoxProtocol::rebootCommand(QStringLiteral("1.2.3.4 -o \"x y\"")));
    QCOMPARE(words.size(), 6);
    QCOMPARE(words.last(), QStringLiteral("http://1.2.3.4 -o \"x y\":8081/control?"));
}

void tst_BoxProtocol::fillReadsNoValueAgain()
{
    QCOMPARE(BoxProtocol::fill(QStringLiteral("%1|%2|%3|100%"), {"%2", "%1%3", "c"}),
             QStringLiteral("%2|%1%3|c|100%"));
    QCOMPARE(BoxProtocol::readUrl(QStringLiteral("10.0.0.9"), BoxProtocol::DeviceName),
             QStringLiteral("http://10.0.0.9:8081/config?action=get&param_name=eParam_DeviceName"));
}

void tst_BoxProtocol::addresses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::newRow("usual") << "192.168.1.254" << true;
    QTest::newRow("zeros") << "0.0.0.0" << true;
    QTest::newRow("too high") << "192.168.1.256" << false;
    QTest::newRow("three parts") << "192.168.1" << false;
    QTest::newRow("five parts") << "1.2.3.4.5" << false;
    QTest::newRow("blank") << "1.2.3.4 " << false;
    QTest::newRow("option") << "-f/etc/passwd" << false;
    QTest::newRow("sign") << "1.2.3.+4" << false;
    QTest::newRow("other digits") << QString::fromUtf8("١.٢.٣.٤") << false;
    QTest::newRow("empty") << "" << false;
}

void tst_BoxProtocol::addresses()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QCOMPARE(BoxProtocol::isIpv4Address(text), valid);
}

void tst_BoxProtocol::replies_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("status");
    QTest::newRow("object") << R"({"status":"success"})"
                            << "success";
    QTest::newRow("array") << R"(["status","success"])"
                           << "";
    QTest::newRow("text") << R"("success")"
                          << "";
    QTest::newRow("torn") << R"({"status":"succ)"
                          << "";
    QTest::newRow("two in a row") << R"({"status":"success"}{"status":"x"})"
                                  << "";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("error page") << "<html>404</html>"
                                << "";
}

void tst_BoxProtocol::replies()
{
    QFETCH(QString, text);
    QTEST(jsonToMap(text).value(QStringLiteral("status")).toString(), "status");
}

QTEST_GUILESS_MAIN(tst_BoxProtocol)
#include "tst_box_protocol.moc"
