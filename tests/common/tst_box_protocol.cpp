// SPDX-License-Identifier: MIT
#include "common/box_protocol.h"
#include "common/json_map.h"
#include "tests/support/table.h"

#include <QProcess>

/// What reaches a child process is decided by the splitting rule of processes, so every command
/// line here goes through the real one.
class tst_BoxProtocol : public QObject
{
    Q_OBJECT

private slots:
    void commandKeepsItsArguments_data()
    {
        columns<QString>("value");
        row("plain", "fw.dat");
        row("blanks", "my  firmware file.dat");
        row("quote inside", "a\"b.dat");
        row("quote at the start", "\"b.dat");
        row("quote at the end", "b.dat\"");
        row("only quotes", "\"\"");
        row("tries to add an argument", "x\" -o /tmp/owned \"");
        row("leading dash", "-o");
        row("numbers of the template", "%1%2%3");
        row("backslashes", "C:\\fw\\new.dat\\");
        row("other alphabets", QString::fromUtf8("固件 \u200fעברית.dat"));
    }
    void commandKeepsItsArguments()
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

    void valueOutsideQuotesStaysOneArgument()
    {
        const QStringList words = QProcess::splitCommand(
            BoxProtocol::rebootCommand(QStringLiteral("1.2.3.4 -o \"x y\"")));
        QCOMPARE(words.size(), 6);
        QCOMPARE(words.last(), QStringLiteral("http://1.2.3.4 -o \"x y\":8081/control?"));
    }

    void zeroEndsNoValue()
    {
        const QString name = QString("a") + QChar(0) + ".mp4";
        QCOMPARE(
            QProcess::splitCommand(BoxProtocol::recordDeleteCommand(name, "10.0.0.5")).value(2),
            "action=record_del&file_name=a%00.mp4");
        QVERIFY(!BoxProtocol::recordOnCommand("10.0.0.5", name).contains(QChar(0)));
    }

    void fillReadsNoValueAgain()
    {
        QCOMPARE(BoxProtocol::fill(QStringLiteral("%1|%2|%3|100%"), {"%2", "%1%3", "c"}),
                 QStringLiteral("%2|%1%3|c|100%"));
        QCOMPARE(
            BoxProtocol::readUrl(QStringLiteral("10.0.0.9"), BoxProtocol::DeviceName),
            QStringLiteral("http://10.0.0.9:8081/config?action=get&param_name=eParam_DeviceName"));
    }

    void actionIsTheProgramsOwn()
    {
        const QString name = QString("action=b&x=") + QChar(0xD800);
        QCOMPARE(BoxProtocol::actionOf(BoxProtocol::recordDeleteCommand(name, "10.0.0.5")),
                 "record_del");
        QCOMPARE(BoxProtocol::actionOf(BoxProtocol::otaCommand("10.0.0.5")), "ota");
        QCOMPARE(BoxProtocol::actionOf(BoxProtocol::uploadCommand("/action=x", "10.0.0.5")), "");
        QCOMPARE(BoxProtocol::actionOf("curl http://10.0.0.5"), "");
    }

    void addresses_data()
    {
        columns<QString, bool>("text", "valid");
        row("usual", "192.168.1.254", true);
        row("zeros", "0.0.0.0", true);
        row("too high", "192.168.1.256", false);
        row("three parts", "192.168.1", false);
        row("five parts", "1.2.3.4.5", false);
        row("blank", "1.2.3.4 ", false);
        row("option", "-f/etc/passwd", false);
        row("sign", "1.2.3.+4", false);
        row("octal to some programs", "10.0.0.010", false);
        row("other digits", QString::fromUtf8("١.٢.٣.٤"), false);
        row("empty", "", false);
    }
    void addresses()
    {
        const auto [text, valid] = cells<QString, bool>();
        QCOMPARE(BoxProtocol::isIpv4Address(text), valid);
    }

    void replies_data()
    {
        columns<QString, QString>("text", "status");
        row("object", R"({"status":"success"})", "success");
        row("array", R"(["status","success"])", "");
        row("text", R"("success")", "");
        row("torn", "{\"status\":\"succ", "");
        row("two in a row", R"({"status":"success"}{"status":"x"})", "");
        row("a text twice", R"({"status":"x","status":"success"})", "success");
        row("a list twice", R"({"status":"success","a":[1],"a":[2]})", "");
        row("a list after a text", R"({"a":"x","status":"success","a":[2]})", "");
        row("a list twice, in other words", R"({"a":[],"\u0061":5,"status":"success"})", "");
        row("a list twice, deep inside", R"({"status":"success","b":[{"a":{},"a":{}}]})", "");
        row("one list in each", R"({"a":{"a":[]},"b":[{"a":[]},{"a":[]}],"status":"success"})",
            "success");
        row("signs in texts", "{\"a\":[],\"b\":\"\\\",\\\"a\\\":[\",\"status\":\"success\"}",
            "success");
        const auto names = [](int count) {
            return "{\"status\":\"success\"" + QString(",\"\\u0061\":1").repeated(count - 1) + '}';
        };
        row("many names", names(Limits::JsonParts - 1), "success");
        row("more names", names(Limits::JsonParts), "");
        row("endless list",
            "{\"status\":\"success\",\"a\":[" + QString("0,").repeated(200000) + "0]}", "");
        row("too deep", QString(2000, '[') + QString(2000, ']'), "");
        row("empty", "", "");
        row("error page", "<html>404</html>", "");
    }
    void replies()
    {
        QFETCH(QString, text);
        QTEST(jsonToMap(text).value(QStringLiteral("status")).toString(), "status");
    }
};

QTEST_GUILESS_MAIN(tst_BoxProtocol)
#include "tst_box_protocol.moc"
