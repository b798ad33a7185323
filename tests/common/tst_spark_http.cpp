// SPDX-License-Identifier: MIT
#include "common/box_protocol.h"
#include "common/http_result.h"
#include "common/limits.h"
#include "common/operation_log.h"
#include "common/spark_http.h"
#include "tests/support/files.h"
#include "tests/support/plugged_box.h"
#include "tests/support/scripted_server.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>

#include <array>
#include <memory>

namespace
{

const QString boxIp = TEST_BLOCK ".1";
const QString serverIp = TEST_BLOCK ".9";

} // namespace

class tst_SparkHttp : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void answerCarriesItsTags();
    void failuresGiveAnEmptyBody_data();
    void failuresGiveAnEmptyBody();
    void limitsHold_data();
    void limitsHold();
    void drippingRepliesEnd_data();
    void drippingRepliesEnd();
    void longValuesAreNone_data();
    void longValuesAreNone();
    void othersDoNotHoldUpAnAnswer_data();
    void othersDoNotHoldUpAnAnswer();
    void slowReadsAllArrive();
    void whatWaitsIsAskedOnce();
    void blockingReadEndsByItself();
    void blockingReadsMayNest();
    void successIsLogged();

private:
    QString read(const QString& parameter) const { return BoxProtocol::readUrl(boxIp, parameter); }

    Spark_Http* m_http = nullptr;
    QTemporaryDir m_data;
    std::unique_ptr<sim::VirtualBox> m_box;
};

void tst_SparkHttp::initTestCase()
{
    qputenv("APPDATA", m_data.path().toUtf8());
    m_http = Spark_Http::instance();
    QCOMPARE(Spark_Http::instance(), m_http);
}

void tst_SparkHttp::init()
{
    m_box.reset();
    m_box = pluggedBox(boxIp);
    m_box->setParameter("eParam_DeviceName", QString::fromUtf8("舞台 <b>Left</b> & \"x\""));
}

void tst_SparkHttp::answerCarriesItsTags()
{
    QSignalSpy answers(m_http, &Spark_Http::S_finished);
    const QString id = m_http->get("getDeviceinfo", read("eParam_DeviceName"), false);
    QVERIFY(QRegularExpression("^[0-9a-f]{32}$").match(id).hasMatch());
    QVERIFY(answers.isEmpty());
    QTRY_COMPARE(answers.size(), 1);
    const QVariantMap map = answers.first().first().toMap();
    QCOMPARE(map.value("type").toString(), QString("getDeviceinfo"));
    QCOMPARE(map.value("id").toString(), id);
    QCOMPARE(map.value("deviceip").toString(), boxIp);
    QVERIFY(map.value("body").toString().contains(QString::fromUtf8("舞台")));
}

void tst_SparkHttp::failuresGiveAnEmptyBody_data()
{
    // Many of them fail as soon as one; of ten megabytes each a few are enough.
    columns<QString, int>("fault", "requests");
    row("silent", "silent", 30);
    row("closed port", "refuse", 30);
    row("hangs up half-way", "hang-up 50", 30);
    row("hangs up at once", "hang-up 0", 30);
    row("HTTP error", "http-error 500", 30);
    row("10 MB", "huge 10000000", 4);
}

void tst_SparkHttp::failuresGiveAnEmptyBody()
{
    const auto [fault, requests] = cells<QString, int>();
    QVERIFY(m_box->addFault(fault));
    QSignalSpy answers(m_http, &Spark_Http::S_finished);
    for (int n = 0; n < requests; ++n)
        m_http->get(QString::number(n), read("eParam_DeviceName"), false);
    QTRY_COMPARE_WITH_TIMEOUT(answers.size(), requests, Spark_Http::TransferLimitMs + 2000);
    for (const QVariantList& answer : qAsConst(answers))
        QCOMPARE(answer.first().toMap().value("body").toString(), QString());
}

/// Each limit from both sides: what is just within it arrives, what is just over it does not, and
/// that is said once.
void tst_SparkHttp::limitsHold_data()
{
    columns<QByteArray, QString, bool, bool, QString>("reply", "path", "isStranger", "arrives",
                                                      "said");
    const QString value = "config?param_name=x";
    const QString list = "config?param_name=eParam_RecordList";
    const auto sized = [](qint64 bytes) { return fileAnswer(QByteArray(int(bytes), 'x')); };
    const auto head = [](qint64 bytes) {
        const QByteArray rest = fileAnswer("body", "Set-Cookie: \r\n");
        const int filling = int(bytes) - (rest.indexOf("\r\n\r\n") + 4);
        return fileAnswer("body", "Set-Cookie: " + QByteArray(filling, 'c') + "\r\n");
    };
    const auto pieces = [](qint64 bytes) {
        QByteArray reply = "HTTP/1.1 200 OK\r\nConnection: close\r\n"
                           "Transfer-Encoding: chunked\r\n\r\n";
        for (qint64 n = 0; n < bytes / 256; ++n)
            reply += "100\r\n" + QByteArray(256, 'x') + "\r\n";
        return QByteArray(reply + "0\r\n\r\n");
    };
    const QString body = "bytes of the body";
    const QString before = "bytes before the body";
    using namespace Limits;
    row("value", sized(ValueBodyBytes), value, false, true, "");
    row("long value", sized(ValueBodyBytes + 1), value, false, false, body);
    row("list", sized(ListBodyBytes), list, false, true, "");
    row("long list", sized(ListBodyBytes + 1), list, false, false, body);
    row("stranger", sized(StrangerBodyBytes), list, true, true, "");
    row("long stranger", sized(StrangerBodyBytes + 1), list, true, false, body);
    row("head", head(HttpHeadBytes), value, false, true, "");
    row("long head", head(HttpHeadBytes + 1), value, false, false, before);
    row("cookies", fileAnswer("x", QByteArray("Set-Cookie: a=b\r\n").repeated(5000)), value, true,
        false, before);
    row("pieces", pieces(32 * 1024), value, false, true, "");
    row("many pieces", pieces(ValueBodyBytes + 256), value, false, false, body);
    row("packed", fileAnswer(qCompress(QByteArray(1000, 'x')), "Content-Encoding: deflate\r\n"),
        value, false, false, "");
}

void tst_SparkHttp::limitsHold()
{
    const auto [reply, path, isStranger, arrives, said] =
        cells<QByteArray, QString, bool, bool, QString>();
    static int number = 100;
    const QString ip = QString(TEST_BLOCK ".%1").arg(++number);
    ScriptedServer server(ip, reply, ScriptedServer::Closes);
    QSignalSpy answers(m_http, &Spark_Http::S_finished);
    const auto peer = isStranger ? Spark_Http::Peer::Stranger : Spark_Http::Peer::Box;
    for (int n = 1; n <= 2; ++n) {
        m_http->get("x", server.url("http", path), false, peer);
        QTRY_COMPARE(answers.size(), n);
        const QString body = answers.last().first().toMap().value("body").toString();
        QCOMPARE(!body.isEmpty(), arrives);
    }
    const auto records = [&ip = ip] { return linesOf(logFile("limits")).filter(ip); };
    QTRY_COMPARE(records().size(), said.isEmpty() ? 0 : 1);
    QVERIFY2(records().join("").contains(said), qPrintable(records().join("")));
}

/// What comes a byte now and then is never silent: it ends all the same.
void tst_SparkHttp::drippingRepliesEnd_data()
{
    columns<bool, int>("isblocking", "limitMs");
    row("blocking", true, Limits::HttpBlockingMs);
    row("not blocking", false, Limits::HttpTotalMs);
}

void tst_SparkHttp::drippingRepliesEnd()
{
    const auto [isblocking, limitMs] = cells<bool, int>();
    QVERIFY(m_box->addFault("throttle 1 on eParam_DeviceName"));
    QSignalSpy answers(m_http, &Spark_Http::S_finished);
    Stopwatch clock;
    m_http->get("x", read("eParam_DeviceName"), isblocking);
    if (!isblocking)
        QVERIFY(answers.wait(limitMs + 2000));
    QVERIFY(clock.elapsed() > limitMs - limitMs / 10); // the system's timers are not exact
    VERIFY_BELOW(clock.elapsed(), limitMs + 1000);
}

void tst_SparkHttp::longValuesAreNone_data()
{
    columns<QString, QString, bool>("value", "taken", "isOver");
    const QString longest(Limits::ValueChars, 'v');
    const auto list = [](int entries) { return QString("\"a\",").repeated(entries) + "\"last\""; };
    row("longest", '"' + longest + '"', '"' + longest + '"', false);
    row("too long", '"' + longest + "v\"", "", true);
    row("longest list", '[' + list(Limits::ListEntries - 1) + ']',
        '[' + list(Limits::ListEntries - 1) + ']', false);
    row("longer list", '[' + list(Limits::ListEntries - 1) + ",\"more\"]",
        '[' + list(Limits::ListEntries - 1) + ']', true);
    row("lists in a list", '[' + QString("[],").repeated(Limits::JsonParts) + "[]]", "", true);
    row("long entry", "[\"a\",\"" + longest + "v\"]", "[\"a\"]", true);
}

void tst_SparkHttp::longValuesAreNone()
{
    const auto [value, taken, isOver] = cells<QString, QString, bool>();
    const auto result = HttpResult::fromBody("{\"param_name\":\"x\",\"value\":" + value + '}');
    const QJsonDocument expected = QJsonDocument::fromJson(('[' + taken + ']').toUtf8());
    QCOMPARE(result.value, expected.array().first().toVariant());
    QCOMPARE(result.parameterName, QString(taken.isEmpty() ? "" : "x"));
    QCOMPARE(result.exceeded != nullptr, isOver);
}

void tst_SparkHttp::othersDoNotHoldUpAnAnswer_data()
{
    columns<bool>("areStrangers");
    row("boxes", false);
    row("strangers", true);
}
/// A hundred take every connection there is and say nothing.
void tst_SparkHttp::othersDoNotHoldUpAnAnswer()
{
    QFETCH(bool, areStrangers);
    const auto peer = areStrangers ? Spark_Http::Peer::Stranger : Spark_Http::Peer::Box;
    constexpr int others = 100;
    constexpr int each = 2;
    std::array<QTcpServer, others> servers;
    for (int n = 0; n < others; ++n) {
        const QString ip = TEST_BLOCK "." + QString::number(100 + n);
        QVERIFY(servers[size_t(n)].listen(QHostAddress(ip), 8081));
        for (int k = 0; k < each; ++k)
            m_http->get("x", BoxProtocol::readUrl(ip, QString::number(k)), false, peer);
    }
    QSignalSpy answers(m_http, &Spark_Http::S_finished);
    Stopwatch clock;
    const QString id = m_http->get("x", read("eParam_DeviceName"), false, peer);
    const auto body = [&] {
        for (const auto& answer : answers) {
            const QVariantMap map = answer.first().toMap();
            if (map.value("id") == id)
                return map.value("body").toString();
        }
        return QString();
    };
    QTRY_VERIFY_WITH_TIMEOUT(body().contains("value"), 30000);
    VERIFY_BELOW(clock.elapsed(), Limits::HttpSilenceMs + 1500);
    // What somebody waits for needs no connection of theirs at all.
    clock.start();
    QVERIFY(m_http->get("x", read("eParam_FirmVersion"), true).contains("value"));
    VERIFY_BELOW(clock.elapsed(), 500);
    QTRY_COMPARE_WITH_TIMEOUT(answers.size(), others * each + 1, 60000);
}

/// More reads than HTTP allows connections: the time in which one waits for its turn is not the
/// box's.
void tst_SparkHttp::slowReadsAllArrive()
{
    QVERIFY(m_box->addFault("slow 1500"));
    QSignalSpy answers(m_http, &Spark_Http::S_finished);
    for (int n = 0; n < 24; ++n)
        m_http->get(QString::number(n), read("eParam_DeviceName"), false);
    // Who waits for an answer does not wait for all of them.
    Stopwatch clock;
    QVERIFY(m_http->get("x", read("eParam_SdkVersion"), true).contains("value"));
    VERIFY_BELOW(clock.elapsed(), 3900);
    QTRY_COMPARE_WITH_TIMEOUT(answers.size(), 24, 12000);
    for (const QVariantList& answer : qAsConst(answers))
        QVERIFY(answer.first().toMap().value("body").toString().contains("value"));
}

void tst_SparkHttp::whatWaitsIsAskedOnce()
{
    QVERIFY(m_box->addFault("slow 50"));
    QSignalSpy answers(m_http, &Spark_Http::S_finished);
    QSet<QString> ids;
    for (int n = 0; n < 600; ++n)
        ids << m_http->get("x", read("eParam_DeviceName"), false);
    QTRY_COMPARE(answers.size(), 600);
    for (const QVariantList& answer : qAsConst(answers))
        QVERIFY(ids.remove(answer.first().toMap().value("id").toString()));
    QCOMPARE(m_box->requests().size(), 7);
    // A caller gone wild fills no memory: what is too much has failed.
    for (int n = 0; n < 600; ++n)
        m_http->get(QString::number(n), read("eParam_DeviceName"), false);
    QTRY_VERIFY(answers.size() > 600);
    QCOMPARE(answers.last().first().toMap().value("body").toString(), QString());
    QTRY_COMPARE_WITH_TIMEOUT(answers.size(), 1200, 20000);
}

void tst_SparkHttp::blockingReadEndsByItself()
{
    QVERIFY(m_http->get("x", read("eParam_DeviceName"), true).contains("value"));
    QVERIFY(m_box->addFault("silent"));
    Stopwatch clock;
    QCOMPARE(m_http->get("x", read("eParam_DeviceName"), true), QString());
    VERIFY_BELOW(clock.elapsed(), Spark_Http::TransferLimitMs + 1500);
    // Nor for what was sent before it and holds all connections of its box.
    QSignalSpy answers(m_http, &Spark_Http::S_finished);
    for (int n = 0; n < Spark_Http::MostAtOnce; ++n)
        m_http->get("x", read(QString::number(n)), false);
    clock.start();
    QCOMPARE(m_http->get("x", read("eParam_DeviceName"), true), QString());
    VERIFY_BELOW(clock.elapsed(), Limits::HttpBlockingMs + 500);
    QTRY_COMPARE_WITH_TIMEOUT(answers.size(), Spark_Http::MostAtOnce, 5000);
}

void tst_SparkHttp::blockingReadsMayNest()
{
    // The inner read begins while the outer waits; each gets its own answer.
    QVERIFY(m_box->addFault("slow 300 on eParam_FirmVersion"));
    QString inner;
    QTimer::singleShot(50, this,
                       [&] { inner = m_http->get("b", read("eParam_SdkVersion"), true); });
    const QString outer = m_http->get("a", read("eParam_FirmVersion"), true);
    QVERIFY2(outer.contains("eParam_FirmVersion"), qPrintable(outer));
    QVERIFY2(inner.contains("eParam_SdkVersion"), qPrintable(inner));
}

void tst_SparkHttp::successIsLogged()
{
    const QString id = m_http->get("x", read("eParam_HardVersion"), false);
    const auto records = [&] { return linesOf(logFile("http-" + boxIp)).filter(id); };
    QTRY_COMPARE(records().size(), 2);
    const QString both = records().join('\n');
    QVERIFY(both.contains(id + "  http请求 http://" TEST_BLOCK ".1:8081/config"));
    QVERIFY(both.contains(id + "  http请求结果 {"));
    QVERIFY(both.contains(":Spark_Http::R_finished]"));

    // A stranger is asked for as long as he is there, and logged once; so is his successor.
    const ScriptedServer server(serverIp, fileAnswer("<html>"), ScriptedServer::Closes);
    for (const auto peer : {Spark_Http::Peer::Stranger, Spark_Http::Peer::Stranger,
                            Spark_Http::Peer::Box, Spark_Http::Peer::Stranger}) {
        QSignalSpy answers(m_http, &Spark_Http::S_finished);
        m_http->get("findDevice", server.url("http"), false, peer);
        QTRY_COMPARE(answers.size(), 1);
    }
    QVERIFY(flushLog(5000));
    QCOMPARE(linesOf(logFile("http-" + serverIp)).size(), 3 * 2);
}

QTEST_GUILESS_MAIN(tst_SparkHttp)
#include "tst_spark_http.moc"
